// Numbers in plain form, as nearly all numbers in tables are written: an optional "-", digits
// without needless leading zeros, and perhaps a point and more digits; not "-0".
//
// A plain number and its text can each be made from the other; 1.50 and 1.5 are different ones. The
// cells of a column can therefore be kept as numbers while they are plain: if a later cell is a
// text, and the column becomes one of texts, the texts of the cells before it are still known.
#ifndef ARBOR_TABLE_CELLS_PLAIN_NUMBER_H
#define ARBOR_TABLE_CELLS_PLAIN_NUMBER_H

#include <cstdint>
#include <limits>
#include <string>

#include "arbor/csv/cell_text.h"

namespace arbor::tree {

// Whether the text is a plain integer of at most eight digits without a sign, and which one. All
// digits are read at once: a loop that looks for their end takes longer than the arithmetic.
inline bool read_digits(cell_text text, int& value) {
  constexpr std::uint64_t each = 0x0101010101010101U;
  if (text.length - 1 > 7 || (*text.begin == '0' && text.length > 1)) return false;
  const std::uint64_t digits =
      first_characters_at_end(eight_characters(text.begin) ^ '0' * each, text.length);
  if ((((digits + (0x7F - 9) * each) | digits) & 0x80 * each) != 0) return false;
  // Every second byte is a number of two digits.
  const std::uint64_t pairs = digits * 10 + (digits >> 8U);
  const std::uint64_t upper = (pairs & 0x000000FF000000FFU) * (1000000ULL << 32U | 100U);
  const std::uint64_t lower = (pairs >> 16U & 0x000000FF000000FFU) * (10000ULL << 32U | 1U);
  value = static_cast<int>((upper + lower) >> 32U);
  return true;
}

// The same, also after a "-", if the integer is not 0.
inline bool read_plain_integer(cell_text text, int& value) {
  if (*text.begin != '-') return read_digits(text, value);
  const bool is_integer = read_digits({text.begin + 1, text.length - 1}, value) && value != 0;
  value = -value;
  return is_integer;
}

// A plain number of at most 17 digits, leading zeros not counted, and at most 31 decimals: the
// digits without the point, times 32, plus the number of decimals. It is negative for a negative
// number.
using plain_number = std::int64_t;

// Stands for no such number.
constexpr plain_number no_plain_number = std::numeric_limits<plain_number>::min();
// The digits of every plain number are below this. From here to 2^58 they are free for other use,
// see column_cells.h.
constexpr std::uint64_t plain_digits_end = 100000000000000000U;

constexpr plain_number plain_integer(int value) {
  return static_cast<plain_number>(value) * 32;
}

// The number with these digits, at most 17, of which so many are decimals.
constexpr plain_number plain_number_of(std::int64_t digits, unsigned int decimals) {
  return digits * 32 + (digits < 0 ? -plain_number{decimals} : plain_number{decimals});
}

// The number of a text, no_plain_number if the text is not one.
plain_number read_plain_number(cell_text text);

// The shortest plain number that is equal to these digits, which have no zeros at either end, times
// ten to the power of `exponent`; no_plain_number if there is none.
plain_number plain_number_of(bool negative, const std::string& digits, long long exponent);

// Whether the number, or no_plain_number, is an integer of 32 bits other than the least one.
inline bool is_plain_integer(plain_number number) {
  constexpr plain_number most = plain_integer(std::numeric_limits<int>::max());
  return number % 32 == 0 && number >= -most && number <= most;
}

std::string text_of(plain_number number);

// Its digits without the point, negative for a negative number, and how many of them are decimals.
inline std::int64_t plain_digits(plain_number number) {
  return number / 32;
}
inline unsigned int plain_decimals(plain_number number) {
  return static_cast<unsigned int>((number < 0 ? -number : number) % 32);
}

// The double that strtod reads from the text in a locale whose point is ".".
double value_of(plain_number number);

// The plain number of the same value that has no needless zero at its end.
plain_number shortened(plain_number number);

// Whether the number has more than `count` digits, leading zeros not counted.
bool has_more_digits_than(int count, plain_number number);

}  // namespace arbor::tree

#endif
