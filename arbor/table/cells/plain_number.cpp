#include "arbor/table/cells/plain_number.h"

#include <algorithm>
#include <charconv>

#include "arbor/utils/number_text.h"

namespace arbor::tree {

using strata::util::decimal_fraction;
using strata::util::last_exact_integer;
using strata::util::last_exact_power;

namespace {

constexpr std::uint64_t most_decimals = 31;

std::uint64_t magnitude(plain_number number) {
  return static_cast<std::uint64_t>(number < 0 ? -number : number);
}

std::uint64_t digits_of(plain_number number) {
  return magnitude(number) / 32;
}

std::uint64_t decimals_of(plain_number number) {
  return magnitude(number) % 32;
}

plain_number packed(bool negative, std::uint64_t digits, std::uint64_t decimals) {
  const auto result = static_cast<plain_number>(digits * 32 + decimals);
  return negative ? -result : result;
}

}  // namespace

plain_number read_plain_number(cell_text text) {
  const char* c = text.begin;
  const char* const end = c + text.length;
  const bool negative = *c == '-';
  if (negative) ++c;
  if (*c < '0' || *c > '9' || (*c == '0' && end - c > 1 && c[1] != '.')) return no_plain_number;
  std::uint64_t digits = 0;
  const char* point = nullptr;
  for (; c < end; ++c) {
    if (*c == '.' && point == nullptr && c + 1 < end) {
      point = c;
      continue;
    }
    if (*c < '0' || *c > '9') return no_plain_number;
    digits = digits * 10 + static_cast<std::uint64_t>(*c - '0');
    if (digits >= plain_digits_end) return no_plain_number;
  }
  const std::uint64_t decimals = point == nullptr ? 0 : static_cast<std::uint64_t>(end - point - 1);
  if (decimals > most_decimals || (negative && digits == 0)) return no_plain_number;
  return packed(negative, digits, decimals);
}

plain_number plain_number_of(bool negative, const std::string& digits, long long exponent) {
  constexpr long long most_digits = 17;
  const long long zeros = std::max(exponent, 0LL);
  const long long decimals = std::max(-exponent, 0LL);
  if (zeros > most_digits || static_cast<long long>(digits.size()) + zeros > most_digits)
    return no_plain_number;
  if (decimals > static_cast<long long>(most_decimals)) return no_plain_number;
  const std::uint64_t number =
      std::stoull(digits + std::string(static_cast<std::size_t>(zeros), '0'));
  return packed(negative, number, static_cast<std::uint64_t>(decimals));
}

std::string text_of(plain_number number) {
  std::string text = std::to_string(digits_of(number));
  const std::size_t decimals = decimals_of(number);
  if (text.size() <= decimals) text.insert(0, decimals + 1 - text.size(), '0');
  if (decimals > 0) text.insert(text.size() - decimals, 1, '.');
  return number < 0 ? "-" + text : text;
}

double value_of(plain_number number) {
  const std::uint64_t digits = digits_of(number);
  const auto decimals = static_cast<unsigned int>(decimals_of(number));
  if (digits > last_exact_integer || decimals > last_exact_power) {
    const std::string text = text_of(number);
    double nearest = 0;
    std::from_chars(text.data(), text.data() + text.size(), nearest);
    return nearest;
  }
  const double value = decimal_fraction(digits, decimals);
  return number < 0 ? -value : value;
}

plain_number shortened(plain_number number) {
  std::uint64_t digits = digits_of(number);
  std::uint64_t decimals = decimals_of(number);
  if (digits == 0) decimals = 0;
  for (; decimals > 0 && digits % 10 == 0; --decimals) digits /= 10;
  return packed(number < 0, digits, decimals);
}

bool has_more_digits_than(int count, plain_number number) {
  std::uint64_t end = 1;
  for (int i = 0; i < count; ++i) end *= 10;
  return digits_of(number) >= end;
}

}  // namespace arbor::tree
