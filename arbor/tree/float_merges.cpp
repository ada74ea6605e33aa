#include "arbor/tree/float_merges.h"

#include <fmt/format.h>

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>

namespace arbor::tree {

namespace {

// A number that is the same for all ways to write a decimal number, and hardly for another one; never 0.
std::uint64_t hash_of_number(const char* text) {
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
    exponent += std::strtol(c + 1, nullptr, 10);
  } else if (*c != '\0') {
    // Hexadecimal digits or infinity. A finite double is the same number in seventeen decimal digits.
    const double value = std::strtod(text, nullptr);
    if (!std::isfinite(value)) return value > 0 ? 2 : 4;
    return hash_of_number(fmt::format("{:.17g}", value).c_str());
  }
  const std::size_t end = digits.find_last_not_of('0') + 1;
  exponent += static_cast<long long>(digits.size() - end);
  digits.resize(end);
  if (digits.empty()) return 6;  // zero, whatever its exponent and sign
  if (text[std::strspn(text, " \t\n\v\f\r")] == '-') digits += '-';
  digits += 'e' + std::to_string(exponent);
  std::uint64_t hash = 0xCBF29CE484222325U;  // FNV-1a
  for (const char digit : digits) hash = (hash ^ static_cast<unsigned char>(digit)) * 0x100000001B3U;
  return hash | 1U;  // zero, the infinities and what has not been seen have numbers of their own
}

}  // namespace

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

void float_merges::add(unsigned int code, const char* text) {
  const std::uint64_t number = hash_of_number(text);
  if (first_seen[code] == 0) first_seen[code] = number;
  if (first_seen[code] != number) others.insert(number);
}

}  // namespace arbor::tree
