#include "arbor/table/decimal.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

// Far beyond what a text can be long enough to make up for.
constexpr long most_exponent = 1000000000;
constexpr long long infinite_exponent = 1000000000000000000;

// Reads an exponent that strtod would read. Returns its end; `text` if it is none.
const char* read_exponent(const char* text, long long& exponent) {
  if (*text != 'e' && *text != 'E') return text;
  const char* const digits = text + (text[1] == '-' || text[1] == '+' ? 2 : 1);
  if (*digits < '0' || *digits > '9') return text;
  char* end = nullptr;
  exponent += std::clamp(std::strtol(text + 1, &end, 10), -most_exponent, most_exponent);
  return end;
}

// The exact digits of a finite double.
std::string digits_of(double value) {
  constexpr int most_decimals = 1074;
  std::array<char, 1500> buffer{};
  char* const end = buffer.data() + buffer.size();
  return {buffer.data(),
          std::to_chars(buffer.data(), end, value, std::chars_format::fixed, most_decimals).ptr};
}

wide_integer integer_of_digits(const std::string& digits, std::size_t count) {
  wide_integer number = 0;
  for (std::size_t i = 0; i < count; ++i) number = number * 10 + (digits[i] - '0');
  return number;
}

}  // namespace

bool read_decimal(const char* text, decimal_number& number) {
  decimal_number read;
  const char* c = text + std::strspn(text, " \t\n\v\f\r");
  read.negative = *c == '-';
  if (*c == '-' || *c == '+') ++c;
  bool has_digits = false;
  bool after_point = false;
  for (; (*c >= '0' && *c <= '9') || (*c == '.' && !after_point); ++c) {
    if (*c == '.') {
      after_point = true;
      continue;
    }
    has_digits = true;
    if (*c != '0' || !read.digits.empty()) read.digits += *c;
    if (after_point) --read.exponent;
  }
  if (!has_digits) return false;
  if (*read_exponent(c, read.exponent) != '\0') return false;
  const std::size_t end = read.digits.find_last_not_of('0') + 1;
  read.exponent += static_cast<long long>(read.digits.size() - end);
  read.digits.resize(end);
  if (read.digits.empty()) read = decimal_number();
  number = std::move(read);
  return true;
}

bool read_exactly(const char* text, decimal_number& number) {
  if (read_decimal(text, number)) return true;
  double value = 0;
  if (!read_known_number(text, value)) return false;
  if (std::isfinite(value)) return read_decimal(digits_of(value).c_str(), number);
  number = {value < 0, "1", infinite_exponent};
  return true;
}

bool is_infinite(const decimal_number& number) {
  return number.exponent == infinite_exponent;
}

int compare(const decimal_number& a, const decimal_number& b) {
  const auto sign = [](const decimal_number& x) {
    return x.digits.empty() ? 0 : x.negative ? -1 : 1;
  };
  if (sign(a) != sign(b) || sign(a) == 0) return sign(a) - sign(b);
  const long long length_of_a = static_cast<long long>(a.digits.size()) + a.exponent;
  const long long length_of_b = static_cast<long long>(b.digits.size()) + b.exponent;
  if (length_of_a != length_of_b) return length_of_a < length_of_b ? -sign(a) : sign(a);
  return sign(a) * a.digits.compare(b.digits);
}

floored_decimal floor_at(const decimal_number& number, unsigned int decimals) {
  const auto size = static_cast<long long>(number.digits.size());
  if (size == 0) return {0, true};
  const long long zeros = number.exponent + static_cast<long long>(decimals);
  constexpr long long most_digits = wide_powers_of_ten.size() - 1;
  if (size + zeros > most_digits)
    return {number.negative ? -wide_powers_of_ten.back() : wide_powers_of_ten.back(), false};
  wide_integer magnitude = integer_of_digits(
      number.digits, static_cast<std::size_t>(std::max(0LL, size + std::min(zeros, 0LL))));
  if (zeros > 0) magnitude *= wide_powers_of_ten[static_cast<std::size_t>(zeros)];
  const bool exact = zeros >= 0;  // the last digit is not 0
  return {number.negative ? -magnitude - (exact ? 0 : 1) : magnitude, exact};
}

std::string decimal_text(wide_integer number, unsigned int decimals) {
  const bool negative = number < 0;
  wide_integer rest = negative ? -number : number;
  for (; decimals > 0 && rest % 10 == 0; --decimals) rest /= 10;
  std::string text;  // from its end
  for (unsigned int digits = 0; rest > 0 || digits <= decimals; ++digits, rest /= 10) {
    if (digits > 0 && digits == decimals) text += '.';
    text += static_cast<char>('0' + static_cast<int>(rest % 10));
  }
  if (negative) text += '-';
  std::reverse(text.begin(), text.end());
  return text;
}

}  // namespace arbor::tree
