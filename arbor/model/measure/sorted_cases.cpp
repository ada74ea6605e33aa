#include "arbor/model/measure/sorted_cases.h"

#include <array>
#include <utility>

namespace arbor::impls {

namespace {

// The number of bits that the numbers up to `greatest` take.
unsigned int bits_of(unsigned int greatest) {
  return greatest == 0 ? 0 : 32 - static_cast<unsigned int>(__builtin_clz(greatest));
}

// Sorts integers by their bits from `low_bit` to before `high_bit`, digit by digit, the lowest
// first: linear in the integers and in the values of a digit. `numbers` and `room` hold `count`
// each; returns the one that holds the sorted integers.
template <unsigned int DigitBits>
unsigned int* sort_by_digits(unsigned int* numbers, unsigned int* room, std::size_t count,
                             unsigned int low_bit, unsigned int high_bit) {
  constexpr unsigned int digit_values = 1U << DigitBits;
  constexpr unsigned int most_digits = (32 + DigitBits - 1) / DigitBits;
  const unsigned int digits = (high_bit - low_bit + DigitBits - 1) / DigitBits;
  // The next place, by digit and its value. Only the digits in use are set.
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

case_packing::case_packing(const code_bounds& range, unsigned int class_count)
    : code_before_range(range.first - 1),
      class_bits(bits_of(class_count)),
      code_bits(bits_of(range.second - range.first)) {}

// The class bits are left out: equal codes may stand in any order.
const unsigned int* sort_packed(unsigned int* numbers, std::size_t count,
                                const case_packing& packing) {
  if (count <= most_compared) {
    std::sort(numbers, numbers + count);
    return numbers;
  }
  constexpr std::size_t many = 600;  // more go faster by fewer, larger digits
  const unsigned int end_bit = packing.class_bits + packing.code_bits;
  return count < many
             ? sort_by_digits<8>(numbers, numbers + count, count, packing.class_bits, end_bit)
             : sort_by_digits<11>(numbers, numbers + count, count, packing.class_bits, end_bit);
}

}  // namespace arbor::impls
