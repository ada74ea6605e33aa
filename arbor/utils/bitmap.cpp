#include "arbor/utils/bitmap.h"

#include <algorithm>
#include <limits>
#include <new>
#include <stdexcept>

#include "arbor/utils/no_storage.h"

namespace strata::adt {

namespace {

static_assert(sizeof(unsigned int) == 4, "a word has 32 bits");

constexpr unsigned long long largest_capacity = std::numeric_limits<unsigned int>::max();

unsigned int capped(unsigned long long bits) {
  return static_cast<unsigned int>(std::min(bits, largest_capacity));
}

}  // namespace

void bitmap::reserve(unsigned int bits) {
  if (bits <= cap) return;
  const unsigned int new_words = words_for(bits);
  std::shared_ptr<unsigned int[]> grown;
  try {
    grown.reset(new unsigned int[new_words]());
  } catch (const std::bad_alloc&) {
    throw util::no_storage("out of memory");
  }
  if (words != nullptr) std::copy_n(words.get(), words_for(length), grown.get());
  words = std::move(grown);
  cap = capped(32ULL * new_words);  // 2^27 words have one bit too many for 32 bits
}

void bitmap::resize(unsigned int bits) {
  const bool shortened = bits < length;
  if (bits > length) reserve(bits);
  length = bits;
  if (shortened) throw std::runtime_error("bitmap::resize cannot deal with shortening of bitmaps");
}

void bitmap::push_back(bool bit) {
  if (length == cap) {
    if (cap == largest_capacity) throw std::runtime_error("bitmap maximum length exceeded.");
    reserve(capped(0ULL + cap + std::max(cap / 2, 32U)));
  }
  if (bit) set(length);
  ++length;
}

bool bitmap::and_op(const bitmap& other) {
  if (length != other.length) return false;
  for (unsigned int i = 0; i < words_for(length); ++i) words[i] &= other.words[i];
  return true;
}

bool bitmap::or_op(const bitmap& other) {
  if (length != other.length) return false;
  for (unsigned int i = 0; i < words_for(length); ++i) words[i] |= other.words[i];
  return true;
}

void bitmap::clear() {
  if (words != nullptr) std::fill_n(words.get(), words_for(length), 0U);
}

void bitmap::clear_behind() {
  if ((length & 31U) != 0) words[length >> BASE_log] &= (1U << (length & 31U)) - 1;
}

}  // namespace strata::adt
