// The replaced operators new and delete. Every block stands in a list, with a number; as the list's
// pointers are kept inverted, a leak checker does not take the list for the blocks' owner.

#include "tests/support/allocations.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <map>
#include <mutex>
#include <vector>

namespace arbor::tests::allocations {

namespace {

struct alignas(std::max_align_t) block {
  std::uintptr_t older, newer;  // blocks, inverted
  std::size_t size;
  unsigned long long number;
};

std::uintptr_t inverted(const block* b) {
  return ~reinterpret_cast<std::uintptr_t>(b);
}
block* block_of(std::uintptr_t bits) {
  return reinterpret_cast<block*>(
      ~bits);  // NOLINT(performance-no-int-to-ptr): the list is hidden from leak checkers
}
char* bytes(const block* b) {
  return reinterpret_cast<char*>(const_cast<block*>(b + 1));
}

std::mutex mutex;  // guards what follows
block* const none = nullptr;
std::uintptr_t newest = ~std::uintptr_t{0};
unsigned long long blocks_made = 0;
failing now = failing::none;
std::size_t until_failure = 0;
bool has_failed = false;

bool fails(bool throwing) {
  if (now == failing::none || (now == failing::not_throwing && throwing)) return false;
  if (until_failure > 0 && --until_failure > 0) return false;
  if (now == failing::one) now = failing::none;
  return has_failed = true;
}

// NOLINTBEGIN(cppcoreguidelines-no-malloc): what operator new itself is made of
void* take(std::size_t size, std::size_t alignment, bool throwing) {
  const std::lock_guard<std::mutex> lock(mutex);
  const std::size_t room = std::max(alignment, sizeof(block));
  const std::size_t whole = (room + size + alignment - 1) / alignment * alignment;
  void* const memory = fails(throwing) || whole < size ? nullptr
                       : alignment > alignof(block)    ? std::aligned_alloc(alignment, whole)
                                                       : std::malloc(whole);
  if (memory == nullptr && throwing) throw std::bad_alloc();
  if (memory == nullptr) return nullptr;
  char* const first = static_cast<char*>(memory) + room;
  auto* taken = new (first - sizeof(block)) block{newest, inverted(none), size, ++blocks_made};
  if (block_of(newest) != none) block_of(newest)->newer = inverted(taken);
  newest = inverted(taken);
  return first;
}

void give_back(void* first, std::size_t alignment) noexcept {
  if (first == nullptr) return;
  const std::lock_guard<std::mutex> lock(mutex);
  const block* given = static_cast<block*>(first) - 1;
  (given->newer == inverted(none) ? newest : block_of(given->newer)->older) = given->older;
  if (given->older != inverted(none)) block_of(given->older)->newer = given->newer;
  std::free(static_cast<char*>(first) - std::max(alignment, sizeof(block)));
}
// NOLINTEND(cppcoreguidelines-no-malloc)

using blocks_by_place = std::map<const char*, const block*>;

// The pointer that is the `i`-th word of a block.
const char* word(const block* b, std::size_t i) {
  const char* pointer = nullptr;
  std::memcpy(&pointer, bytes(b) + i * sizeof pointer, sizeof pointer);
  return pointer;
}

// Takes vectors that were themselves made by operator new out of `left`, with their values and what
// texts among these own. (Leak checkers, which know the function that makes those of known values,
// find what this wrongly leaves out.)
void leave_out_known_values(blocks_by_place& left) {
  const blocks_by_place all = left;
  for (const auto& [place, vector] : all) {
    if (vector->size != sizeof(std::vector<int>)) continue;
    const auto values = all.find(word(vector, 0));
    const bool is_empty = word(vector, 0) == nullptr && word(vector, 2) == nullptr;
    if (values == all.end() && !is_empty) continue;
    left.erase(place);
    if (is_empty) continue;
    left.erase(values->first);
    for (std::size_t i = 0; i < values->second->size / sizeof(char*); ++i)
      left.erase(word(values->second, i));
  }
}

}  // namespace

void fail(failing which, std::size_t number) {
  const std::lock_guard<std::mutex> lock(mutex);
  now = which;
  until_failure = number;
  has_failed = false;
}

bool stop_failing() {
  const std::lock_guard<std::mutex> lock(mutex);
  now = failing::none;
  return has_failed;
}

unsigned long long made() {
  const std::lock_guard<std::mutex> lock(mutex);
  return blocks_made;
}

std::size_t left_since(unsigned long long already_made) {
  blocks_by_place left;
  const unsigned long long last = made();
  for (const block* b = block_of(newest); b != none && b->number > already_made;
       b = block_of(b->older)) {
    if (b->number <= last) left[bytes(b)] = b;
  }
  leave_out_known_values(left);
  return left.size();
}

}  // namespace arbor::tests::allocations

namespace {

constexpr std::size_t usual = alignof(std::max_align_t);

std::size_t number_of(std::align_val_t alignment) {
  return static_cast<std::size_t>(alignment);
}

}  // namespace

using arbor::tests::allocations::give_back;
using arbor::tests::allocations::take;

void* operator new(std::size_t size) {
  return take(size, usual, true);
}
void* operator new[](std::size_t size) {
  return take(size, usual, true);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
  return take(size, number_of(alignment), true);
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return take(size, number_of(alignment), true);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return take(size, usual, false);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return take(size, usual, false);
}
void* operator new(std::size_t size, std::align_val_t alignment,
                   const std::nothrow_t& /*tag*/) noexcept {
  return take(size, number_of(alignment), false);
}
void* operator new[](std::size_t size, std::align_val_t alignment,
                     const std::nothrow_t& /*tag*/) noexcept {
  return take(size, number_of(alignment), false);
}
void operator delete(void* first) noexcept {
  give_back(first, usual);
}
void operator delete[](void* first) noexcept {
  give_back(first, usual);
}
void operator delete(void* first, std::size_t /*size*/) noexcept {
  give_back(first, usual);
}
void operator delete[](void* first, std::size_t /*size*/) noexcept {
  give_back(first, usual);
}
void operator delete(void* first, std::align_val_t alignment) noexcept {
  give_back(first, number_of(alignment));
}
void operator delete[](void* first, std::align_val_t alignment) noexcept {
  give_back(first, number_of(alignment));
}
void operator delete(void* first, std::size_t /*size*/, std::align_val_t alignment) noexcept {
  give_back(first, number_of(alignment));
}
void operator delete[](void* first, std::size_t /*size*/, std::align_val_t alignment) noexcept {
  give_back(first, number_of(alignment));
}
