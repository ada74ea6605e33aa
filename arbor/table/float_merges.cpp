#include "arbor/table/float_merges.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace arbor::tree {

namespace {

// Of what is no plain number. Plain ones have their own number, which is none of these: they have
// no digits and yet some behind the point.
constexpr std::uint64_t infinity = 2;
constexpr std::uint64_t negative_infinity = 4;
constexpr std::uint64_t zero = 6;

}  // namespace

std::uint64_t number_identity(plain_number number) {
  const plain_number shortest = shortened(number);
  return shortest == 0 ? zero : static_cast<std::uint64_t>(shortest);
}

std::uint64_t number_identity(const char* text) {
  std::string digits;      // the significant ones
  long long exponent = 0;  // of a point behind them
  bool behind_point = false;
  const char* c = text + std::strspn(text, " \t\n\v\f\r+-");
  for (; (*c >= '0' && *c <= '9') || *c == '.'; ++c) {
    if (*c == '.') {
      behind_point = true;
    } else {
      if (*c != '0' || !digits.empty()) digits += *c;
      if (behind_point) --exponent;
    }
  }
  if (*c == 'e' || *c == 'E') {
    // Far beyond what a text can be long enough to make up for.
    constexpr long most = 1000000000;
    exponent += std::clamp(std::strtol(c + 1, nullptr, 10), -most, most);
  } else if (*c != '\0') {
    // Hexadecimal digits or infinity. A finite double is the same number in seventeen decimal
    // digits.
    const double value = std::strtod(text, nullptr);
    if (!std::isfinite(value)) return value > 0 ? infinity : negative_infinity;
    return number_identity(fmt::format("{:.17g}", value).c_str());
  }
  const std::size_t end = digits.find_last_not_of('0') + 1;
  exponent += static_cast<long long>(digits.size() - end);
  digits.resize(end);
  if (digits.empty()) return zero;  // whatever its exponent and sign
  const bool negative = text[std::strspn(text, " \t\n\v\f\r")] == '-';
  const plain_number plain = plain_number_of(negative, digits, exponent);
  if (plain != no_plain_number) return static_cast<std::uint64_t>(plain);
  if (negative) digits += '-';
  digits += 'e' + std::to_string(exponent);
  std::uint64_t hash = 0xCBF29CE484222325U;  // FNV-1a
  for (const char digit : digits)
    hash = (hash ^ static_cast<unsigned char>(digit)) * 0x100000001B3U;
  return hash | 1U;  // the infinities, zero and what has not been seen have numbers of their own
}

bool may_merge_as_float(const char* text, double value) {
  const double magnitude = std::fabs(value);
  if (magnitude > std::numeric_limits<float>::max()) return true;
  if (value != 0 && magnitude < std::numeric_limits<float>::min()) return true;
  int significant = 0;
  for (const char* c = text; *c != '\0' && *c != 'e' && *c != 'E'; ++c) {
    if (*c == 'x' || *c == 'X') return true;  // hexadecimal
    if (*c >= '0' && *c <= '9' && (significant > 0 || *c != '0')) ++significant;
  }
  return significant > std::numeric_limits<float>::digits10;
}

bool may_merge_as_float(plain_number number) {
  return has_more_digits_than(std::numeric_limits<float>::digits10,
                              number);  // and none is out of range
}

}  // namespace arbor::tree
