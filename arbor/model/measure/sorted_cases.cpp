#include "arbor/model/measure/sorted_cases.h"

#include <array>
#include <utility>

namespace arbor::impls {

namespace {

// The number of bits that the numbers up to `greatest` take.
unsigned int bits_of(unsigned int greatest) {
  return greatest == 0 ? 0 : 32 - static_cast<unsigned int>(__builtin_clz(greatest));
}

// The most bits of a digit, for a few cases and for many, and the most values of all digits of 32
// bits.
constexpr unsigned int short_digit = 8;
constexpr unsigned int long_digit = 11;
constexpr std::size_t most_digit_values = 3U << long_digit;

// Sorts cases by the bits of what is packed, from `low_bit` to before `high_bit`, digit by digit,
// the lowest first: linear in the cases and in the values of a digit. `cases` and `room` hold
// `count` each; returns the one that holds the sorted cases.
//
// The digits are as many as they must be with at most `most_digit_bits` each, and equally long: the
// fewer values a digit has, the more of the places that cases are written to stay in the cache.
template <class Case>
Case* sort_by_digits(Case* cases, Case* room, std::size_t count, unsigned int low_bit,
                     unsigned int high_bit, unsigned int most_digit_bits) {
  const unsigned int digits = (high_bit - low_bit + most_digit_bits - 1) / most_digit_bits;
  if (digits == 0) return cases;
  const unsigned int digit_bits = (high_bit - low_bit + digits - 1) / digits;
  const unsigned int digit_values = 1U << digit_bits;
  // The next place, by digit and its value. Only those in use are set.
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init)
  std::array<unsigned int, most_digit_values> places;
  std::fill_n(places.begin(), digits * digit_values, 0U);
  const auto next_of = [&](unsigned int digit) { return places.data() + digit * digit_values; };
  for (std::size_t i = 0; i < count; ++i) {
    unsigned int left = cases[i].packed >> low_bit;
    for (unsigned int digit = 0; digit < digits; ++digit, left >>= digit_bits)
      ++next_of(digit)[left & (digit_values - 1)];
  }
  for (unsigned int digit = 0; digit < digits; ++digit, std::swap(cases, room)) {
    unsigned int* const next = next_of(digit);
    unsigned int before = 0;
    for (unsigned int value = 0; value < digit_values; ++value)
      before += std::exchange(next[value], before);
    const unsigned int shift = low_bit + digit * digit_bits;
    for (std::size_t i = 0; i < count; ++i)
      room[next[cases[i].packed >> shift & (digit_values - 1)]++] = cases[i];
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
  if (count <= most_compared) {
    insert_in_order(cases, count, low_bit);
    return cases;
  }
  return sort_by_digits(cases, cases + count, count, low_bit, low_bit + packing.code_bits,
                        count < many ? short_digit : long_digit);
}

template const counted_case* sort_packed(counted_case*, std::size_t, const case_packing&);
template const weighed_case* sort_packed(weighed_case*, std::size_t, const case_packing&);

}  // namespace arbor::impls
