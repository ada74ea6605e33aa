#include "arbor/model/packed_cases.h"

#include <array>
#include <utility>

namespace arbor::impls {

namespace {

constexpr unsigned int most_digit_bits = 11;

// Copies [from, from + count) to `to` in the order of the digit of `bits` bits above `shift`, equal ones as they stand.
void sort_by_digit(const unsigned int* from, unsigned int* to, std::size_t count, unsigned int shift,
                   unsigned int bits) {
  const unsigned int mask = (1U << bits) - 1;
  std::array<unsigned int, 1U << most_digit_bits> next;
  std::fill_n(next.begin(), mask + 1, 0U);
  for (std::size_t i = 0; i < count; ++i) ++next[from[i] >> shift & mask];
  unsigned int before = 0;
  for (unsigned int digit = 0; digit <= mask; ++digit) before += std::exchange(next[digit], before);
  for (std::size_t i = 0; i < count; ++i) to[next[from[i] >> shift & mask]++] = from[i];
}

}  // namespace

// Digit by digit from the last, which is linear in the cases. Class bits need no order.
void packed_cases::sort() {
  unsigned int* from = numbers.data();
  if (count <= few) {
    std::sort(from, from + count);
  } else {
    unsigned int* to = from + count;
    // Counting through all digits has to stay cheap beside the cases.
    const unsigned int most_bits = count < 1U << 13U ? 8 : most_digit_bits;
    const unsigned int digits = (code_bits + most_bits - 1) / most_bits;
    const unsigned int bits = (code_bits + digits - 1) / digits;
    for (unsigned int digit = 0; digit < digits; ++digit, std::swap(from, to)) {
      sort_by_digit(from, to, count, class_bits + digit * bits, bits);
    }
  }
  known = from + unknown;
}

}  // namespace arbor::impls
