// Decimal numbers of any length, exactly as their texts state them.
//
//   decimal_number number;
//   if (read_exactly("-12.50e3", number)) ...   // -125 times 10^2
//   const floored_decimal cents = floor_at(number, 2);   // -1250000, exact
#ifndef ARBOR_TABLE_DECIMAL_H
#define ARBOR_TABLE_DECIMAL_H

#include <array>
#include <cstddef>
#include <string>

namespace arbor::tree {

// 64 bits are too few for identifiers of twenty digits.
__extension__ using wide_integer = __int128;

// 10^0 to 10^38.
constexpr std::array<wide_integer, 39> wide_powers_of_ten = [] {
  std::array<wide_integer, 39> powers{1};
  for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = powers[i - 1] * 10;
  return powers;
}();

// A number as its significant digits, without zeros at either end, times ten to the power of an
// exponent.
struct decimal_number {
  bool negative = false;
  std::string digits;  // none: zero
  long long exponent = 0;
};

// Returns whether all of a text is a number in decimal digits, perhaps with a point and an
// exponent, and only then sets `number`. Blanks may precede it. The point is "." in any locale.
bool read_decimal(const char* text, decimal_number& number);

// The same for any text that read_known_number takes for a number. A number in hexadecimal digits
// is the nearest double. An infinity is beyond all other numbers.
bool read_exactly(const char* text, decimal_number& number);

bool is_infinite(const decimal_number& number);

// Less than, equal to or greater than 0 as `a` is less than, equal to or greater than `b`.
int compare(const decimal_number& a, const decimal_number& b);

// The greatest integer up to a number times 10^decimals, and whether it is equal to that. Beyond
// 10^38 it is 10^38, or its negative, and not exact.
struct floored_decimal {
  wide_integer floor;
  bool exact;
};
floored_decimal floor_at(const decimal_number& number, unsigned int decimals);

// `number` times 10^-decimals in the fewest digits, without an exponent.
std::string decimal_text(wide_integer number, unsigned int decimals);

}  // namespace arbor::tree

#endif
