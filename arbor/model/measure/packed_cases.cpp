#include "arbor/model/measure/packed_cases.h"

#include <array>
#include <utility>

namespace arbor::impls {

namespace {

// Sorts integers by their bits from `low_bit` to before `high_bit`, one digit of these after the
// other, from the last: linear in the integers and in what a digit can be. `numbers` and `room`
// hold as many; returns which of them holds the sorted ones.
template <unsigned int DigitBits>
unsigned int* sort_by_digits(unsigned int* numbers, unsigned int* room, std::size_t count,
                             unsigned int low_bit, unsigned int high_bit) {
  constexpr unsigned int digit_values = 1U << DigitBits;
  constexpr unsigned int most_digits = (32 + DigitBits - 1) / DigitBits;
  const unsigned int digits = (high_bit - low_bit + DigitBits - 1) / DigitBits;
  // By digit and its value, the next place. Only the digits that there are take the time to be set.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
  std::array<std::array<unsigned int, digit_values>, most_digits> next;
  for (unsigned int d = 0; d < digits; ++d) next[d].fill(0);
  const auto value = [=](unsigned int number, unsigned int d) {
    return number >> (low_bit + d * DigitBits) & (digit_values - 1);
  };
  for (std::size_t i = 0; i < count; ++i) {
    for (unsigned int d = 0; d < digits; ++d) ++next[d][value(numbers[i], d)];
  }
  for (unsigned int d = 0; d < digits; ++d, std::swap(numbers, room)) {
    unsigned int before = 0;
    for (unsigned int& place : next[d]) before += std::exchange(place, before);
    for (std::size_t i = 0; i < count; ++i) room[next[d][value(numbers[i], d)]++] = numbers[i];
  }
  return numbers;
}

}  // namespace

// Class bits need no order.
void packed_cases::sort() {
  unsigned int* sorted = numbers.data();
  if (count <= most_compared) {
    std::sort(sorted, sorted + count);
  } else {
    constexpr std::size_t many =
        600;  // from here on it pays to save a digit by going through more values of each
    const unsigned int end_bit = class_bits + code_bits;
    sorted = count < many ? sort_by_digits<8>(sorted, sorted + count, count, class_bits, end_bit)
                          : sort_by_digits<11>(sorted, sorted + count, count, class_bits, end_bit);
  }
  known = sorted + unknown;
}

}  // namespace arbor::impls
