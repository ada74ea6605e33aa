// Converts numbers to text without loss, and text to floating-point numbers.
//
// Both use the decimal point of the process's locale, which must not change during a call.
//
//   strata::util::number_text(2.5);   // "2.5"
//   strata::util::number_text(0.1F);  // "0.100000001490116119384765625"
//   double value = 0;
//   bool whole = strata::util::read_number("1e3", value);  // true, 1000
#ifndef ARBOR_UTILS_NUMBER_TEXT_H
#define ARBOR_UTILS_NUMBER_TEXT_H

#include <cstdint>
#include <string>

namespace strata::util {

// Returns the decimal digits, after a "-" for a negative number; no padding, no grouping.
std::string number_text(int value);
std::string number_text(unsigned int value);

// Returns the value with thirty decimals, rounded, without trailing zeros and without a trailing
// point (which is cut only if it is a "."); "inf", "-inf", "nan" or "-nan" if it is not finite. A
// float converts to a double of the same value, so this prints floats, too.
std::string number_text(double value);

// Returns whether the decimal point is a ".". Several threads may call it at the same time.
bool point_is_dot();

// Returns the double nearest to `digits` / 10^`behind_point`, which is what strtod returns for the
// number in decimal digits. Below these limits both operands are exact doubles, so that only the
// division rounds. `digits` is at most 2^53, `behind_point` at most 22; neither is checked.
constexpr std::uint64_t last_exact_integer = 1ULL << 53U;
constexpr unsigned int last_exact_power = 22;
double decimal_fraction(std::uint64_t digits, unsigned int behind_point);

// Returns whether all of `text` (NUL-terminated, not null) is a number by the rules of strtod:
// leading white space, decimal or hexadecimal digits, an exponent, "inf" or "nan". The empty text
// is not. Sets `value` then and leaves it unchanged otherwise. A number too large for a double
// becomes infinite, one too small 0 or denormal. Throws nothing.
bool read_number(const char* text, double& value);

}  // namespace strata::util

#endif
