// The replaced operator new. What is left behind is LeakSanitizer's business.

#include "tests/support/allocations.h"

#include <atomic>
#include <cstdlib>

namespace arbor::tests {

static std::atomic<failing> now{failing::none};
static std::atomic<int> until_failure;
static std::atomic<bool> has_failed;

bool fail(failing which, int number) {
  until_failure = number;
  now = which;
  return has_failed.exchange(false);
}

static void* allocate(std::size_t size, bool can_throw) {
  const failing which = now;
  if (which != failing::none && !(which == failing::nothrow_new && can_throw)) {
    const int number = until_failure--;
    if (number == 1 || (number < 1 && which != failing::one)) {
      has_failed = true;
      return nullptr;
    }
  }
  return std::malloc(size);  // NOLINT(cppcoreguidelines-no-malloc): what operator new is made of
}

static void* allocate_or_throw(std::size_t size) {
  void* const memory = allocate(size, true);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace arbor::tests

void* operator new(std::size_t size) {
  return arbor::tests::allocate_or_throw(size);
}
void* operator new[](std::size_t size) {
  return arbor::tests::allocate_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return arbor::tests::allocate(size, false);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return arbor::tests::allocate(size, false);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t /*size*/) noexcept {
  std::free(memory);
}
