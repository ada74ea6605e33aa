// Numbers to text without loss, and text to floating-point numbers.
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

// Decimal digits, with a leading "-" for a negative number; no padding, no grouping.
std::string number_text(int value);
std::string number_text(unsigned int value);

// The decimal expansion of the value to thirty decimals, without trailing zeros and without a bare
// trailing point; "inf", "-inf", "nan" or "-nan" for what is not finite. A float widens to the same
// value, so its expansion is its own. The point is the one of the process's locale; trailing zeros
// are cut in any locale, a bare point only if ".".
std::string number_text(double value);

// Whether the process's locale writes "." between a number's whole and its fraction.
bool point_is_dot();

// The double nearest to `digits`, at most 2^53, divided by ten to the power of `behind_point`, at
// most 22: both are doubles themselves, so that the quotient is rounded just once, to what strtod
// finds for the number in decimal digits.
constexpr std::uint64_t last_exact_integer = 1ULL << 53U;
constexpr unsigned int last_exact_power = 22;
double decimal_fraction(std::uint64_t digits, unsigned int behind_point);

// Whether the whole of `text` (NUL-terminated, not null) is a number by the rules of strtod:
// leading white space, decimal or hexadecimal digits, exponent, "inf" or "nan", in the process's
// locale. An empty text is none. `value` is set then and unchanged otherwise; what is too large for
// a double is infinite, what is too small is 0 or denormal.
bool read_number(const char* text, double& value);

}  // namespace strata::util

#endif
