#include "arbor/model/measure/sorted_cases.h"

#include <array>
#include <utility>

namespace arbor::impls {

namespace {

// The number of bits that the numbers up to `greatest` take.
unsigned int bits_of(unsigned int greatest) {
  return greatest == 0 ? 0 : 32 - static_cast<unsigned int>(__builtin_clz(greatest));
}

// Sorts cases by the bits of what is packed, from `low_bit` to before `high_bit`, digit by digit,
// the lowest first: linear in the cases and in the values of a digit. `cases` and `room` hold
// `count` each; returns the one that holds the sorted cases.
template <unsigned int DigitBits, class Case>
Case* sort_by_digits(Case* cases, Case* room, std::size_t count, unsigned int low_bit,
                     unsigned int high_bit) {
  constexpr unsigned int digit_values = 1U << DigitBits;
  constexpr unsigned int most_digits = (32 + DigitBits - 1) / DigitBits;
  const unsigned int digits = (high_bit - low_bit + DigitBits - 1) / DigitBits;
  // The next place, by digit and its value. Only the digits in use are set.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
  std::array<std::array<unsigned int, digit_values>, most_digits> next;
  for (unsigned int d = 0; d < digits; ++d) next[d].fill(0);
  const auto value = [=](const Case& c, unsigned int d) {
    return c.packed >> (low_bit + d * DigitBits) & (digit_values - 1);
  };
  for (std::size_t i = 0; i < count; ++i) {
    for (unsigned int d = 0; d < digits; ++d) ++next[d][value(cases[i], d)];
  }
  for (unsigned int d = 0; d < digits; ++d, std::swap(cases, room)) {
    unsigned int before = 0;
    for (unsigned int& place : next[d]) before += std::exchange(place, before);
    for (std::size_t i = 0; i < count; ++i) room[next[d][value(cases[i], d)]++] = cases[i];
  }
  return cases;
}

// Moves each case before those of greater codes: for a few cases.
template <class Case>
void insert_in_order(Case* cases, std::size_t count, unsigned int low_bit) {
  for (std::size_t i = 1; i < count; ++i) {
    const Case moved = cases[i];
    std::size_t place = i;
    for (; place > 0 && cases[place - 1].packed >> low_bit > moved.packed >> low_bit; --place)
      cases[place] = cases[place - 1];
    cases[place] = moved;
  }
}

}  // namespace

case_packing::case_packing(const code_bounds& range, unsigned int class_count)
    : code_before_range(range.first - 1),
      class_bits(bits_of(class_count)),
      code_bits(bits_of(range.second - range.first)) {}

// The class bits are no part of the order.
template <class Case>
const Case* sort_packed(Case* cases, std::size_t count, const case_packing& packing) {
  constexpr std::size_t many = 600;  // more go faster by fewer, larger digits
  const unsigned int low_bit = packing.class_bits;
  const unsigned int end_bit = low_bit + packing.code_bits;
  if (count <= most_compared) {
    insert_in_order(cases, count, low_bit);
    return cases;
  }
  return count < many ? sort_by_digits<8>(cases, cases + count, count, low_bit, end_bit)
                      : sort_by_digits<11>(cases, cases + count, count, low_bit, end_bit);
}

template const counted_case* sort_packed(counted_case*, std::size_t, const case_packing&);
template const weighed_case* sort_packed(weighed_case*, std::size_t, const case_packing&);

}  // namespace arbor::impls
