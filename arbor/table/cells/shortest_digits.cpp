#include "arbor/table/cells/shortest_digits.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

// Two different numbers of at most 15 digits are different doubles.
constexpr double unique_digits_end = 1e15;
constexpr int unique_digits = 15;
// Below this, an integer and a decimal are a plain number.
constexpr double whole_end = 1e16;

// As a number with a fraction would be, if there is room for a decimal.
plain_number with_decimal(plain_number number) {
  if (number == no_plain_number || plain_decimals(number) > 0) return number;
  const std::int64_t digits = plain_digits(number);
  constexpr auto end = static_cast<std::int64_t>(plain_digits_end / 10);
  return digits <= -end || digits >= end ? number : plain_number_of(digits * 10, 1);
}

// From the text that std::to_chars makes: "-1.25e-07".
template <class Number>
plain_number digits_by_text(Number number) {
  if (!std::isfinite(number) || number == 0) return no_plain_number;
  std::array<char, 32> buffer{};
  const char* const end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                        std::chars_format::scientific)
                              .ptr;
  const char* const begin = buffer.data();
  const char* const exponent_mark = std::find(begin, end, 'e');
  std::string digits;
  for (const char* c = begin; c < exponent_mark; ++c) {
    if (*c >= '0' && *c <= '9') digits += *c;
  }
  int exponent = 0;
  const char* const exponent_digits = exponent_mark + (exponent_mark[1] == '+' ? 2 : 1);
  std::from_chars(exponent_digits, end, exponent);
  exponent -= static_cast<int>(digits.size()) - 1;
  for (; digits.size() > 1 && digits.back() == '0'; ++exponent) digits.pop_back();
  return with_decimal(plain_number_of(number < 0, digits, exponent));
}

template <class Number>
std::string text_of_number(Number number) {
  if (number == 0) return std::signbit(number) ? "-0.0" : "0.0";
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), number).ptr};
}

}  // namespace

plain_number shortest_digits::of(double number) {
  if (!(std::fabs(number) < whole_end)) return digits_by_text(number);
  const auto whole = static_cast<std::int64_t>(number);
  if (static_cast<double>(whole) == number)
    return whole == 0 && std::signbit(number) ? no_plain_number : plain_number_of(whole * 10, 1);
  if (!are_many) {
    plain_number found = with_decimals(number, usual_decimals);
    for (unsigned int d = 1; found == no_plain_number && d <= unique_digits; ++d) {
      found = with_decimals(number, d);
      if (found != no_plain_number) usual_decimals = d;
    }
    if (found != no_plain_number) return shortened(found);
  }
  const plain_number found = digits_by_text(number);
  are_many = found == no_plain_number || has_more_digits_than(unique_digits, found);
  return found;
}

plain_number shortest_digits::of(float number) {
  const auto whole = static_cast<std::int64_t>(std::fabs(number) < 0x1p24F ? number : 0.5F);
  if (number != 0 && static_cast<float>(whole) == number) return plain_number_of(whole * 10, 1);
  return number == 0 && !std::signbit(number) ? plain_number_of(0, 1) : digits_by_text(number);
}

// The number with this many decimals if that reads back to the same double. As the quotient is
// rounded correctly, it is the double nearest to the decimal number.
plain_number shortest_digits::with_decimals(double number, unsigned int decimals) const {
  constexpr std::array<double, 16> powers_of_ten = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                    1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  const double scaled = number * powers_of_ten[decimals];
  if (std::fabs(scaled) >= unique_digits_end) return no_plain_number;
  const auto digits = static_cast<std::int64_t>(scaled < 0 ? scaled - 0.5 : scaled + 0.5);
  if (static_cast<double>(digits) / powers_of_ten[decimals] != number) return no_plain_number;
  return plain_number_of(digits, decimals);
}

std::string shortest_number_text(double number) {
  return text_of_number(number);
}

std::string shortest_number_text(float number) {
  return text_of_number(number);
}

}  // namespace arbor::tree
