#include "arbor/utils/number_text.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace strata::util {

std::string number_text(int value) {
  return std::to_string(value);
}

std::string number_text(unsigned int value) {
  return std::to_string(value);
}

std::string number_text(double value) {
  // Sign, 309 digits of the largest double, a point of a few bytes, 30 decimals and the NUL.
  std::array<char, 352> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.30f", value);
  std::string text(buffer.data(), static_cast<std::size_t>(length));
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

// By strtod, because several threads must not call localeconv at the same time. strtod is fast for
// a zero, and reads the "." as well if that is the decimal point.
bool point_is_dot() {
  char* end = nullptr;
  static_cast<void>(std::strtod("0.", &end));
  return *end == '\0';
}

double decimal_fraction(std::uint64_t digits, unsigned int behind_point) {
  constexpr std::array<double, 23> powers_of_ten = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                    1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                    1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  return static_cast<double>(digits) / powers_of_ten[behind_point];
}

namespace {

// Reads the most common numbers faster than strtod: an optional "-" and at most 18 digits with or
// without a point, within the limits of decimal_fraction.
bool read_plain(const char* text, double& value) {
  const bool negative = *text == '-';
  const char* const begin = text + (negative ? 1 : 0);
  const char* point = nullptr;
  const char* c = begin;
  std::uint64_t digits = 0;
  for (; (*c >= '0' && *c <= '9') || (*c == '.' && point == nullptr); ++c) {
    if (*c == '.') {
      point = c;
    } else {
      digits = digits * 10 + static_cast<std::uint64_t>(*c - '0');
    }
    if (c - begin > 18) return false;
  }
  const auto count = (c - begin) - (point == nullptr ? 0 : 1);
  if (*c != '\0' || count == 0 || count > 18 || digits > last_exact_integer) return false;
  if (point != nullptr && !point_is_dot()) return false;
  const double magnitude =
      decimal_fraction(digits, point == nullptr ? 0U : static_cast<unsigned int>(c - point - 1));
  value = negative ? -magnitude : magnitude;
  return true;
}

}  // namespace

bool read_number(const char* text, double& value) {
  if (read_plain(text, value)) return true;
  char* end = nullptr;
  const double parsed = std::strtod(text, &end);
  if (*text == '\0' || *end != '\0') return false;
  value = parsed;
  return true;
}

}  // namespace strata::util
