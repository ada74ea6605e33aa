#include "arbor/table/value_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include "arbor/table/decimal_domain.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

using impls::column;

constexpr char escape = '\x7F';
constexpr std::string_view hexadecimal_digits = "0123456789ABCDEF";

bool needs_escape(char c) {
  return static_cast<unsigned char>(c) >= 0x7F;
}

template <class Number>
std::string fewest_digits(Number value) {
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

// The numbers from -infinity to infinity are numbered by their bits: negative ones downwards from
// -1, the others upwards.
template <class Number, class Integer>
Number numbered(Integer number) {
  static_assert(sizeof(Number) == sizeof(Integer));
  const Integer pattern = number < 0 ? std::numeric_limits<Integer>::min() + (-1 - number) : number;
  Number value = 0;
  std::memcpy(&value, &pattern, sizeof value);
  return value;
}

// The number of a code, found by comparing: that is exact where printing is not.
template <class Number, class Integer>
std::string compared_text(impls::o_set& domain, unsigned int code) {
  using Unsigned = std::make_unsigned_t<Integer>;
  constexpr Number infinity = std::numeric_limits<Number>::infinity();
  Integer high = 0;
  std::memcpy(&high, &infinity, sizeof high);
  Integer low = -high - 1;  // the number of -infinity
  while (low < high) {
    const auto distance = static_cast<Unsigned>(high) - static_cast<Unsigned>(low);
    const Integer middle = low + static_cast<Integer>(distance / 2);
    if (domain.leq(code, fewest_digits(numbered<Number, Integer>(middle))) == 1) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return fewest_digits(numbered<Number, Integer>(low));
}

// The text of a code of a domain of such numbers. `printed` is what the domain prints.
template <class Number, class Integer>
std::string shortest_of_code(const column& column, unsigned int code, const std::string& printed) {
  double value = 0;
  if (!read_known_number(printed.c_str(), value)) return printed;
  std::string shortest = fewest_digits(static_cast<Number>(value));
  return column.get_index(shortest.c_str()) == code
             ? shortest
             : compared_text<Number, Integer>(*column.get_o_set(), code);
}

// Reads the text of a number. Returns whether a domain of this type of integers may hold it, and
// only then sets `integer`.
bool read_integer(const std::string& data_type, const char* text, long long& integer) {
  decimal_number number;
  if (!read_exactly(text, number)) return false;
  const floored_decimal whole = floor_at(number, 0);
  const bool is_signed = data_type == "integer";
  const wide_integer least = is_signed ? -std::numeric_limits<int>::max() : 0;
  const wide_integer greatest = is_signed ? wide_integer{std::numeric_limits<int>::max()}
                                          : std::numeric_limits<unsigned int>::max();
  if (!whole.exact || whole.floor < least || whole.floor > greatest) return false;
  integer = static_cast<long long>(whole.floor);
  return true;
}

}  // namespace

std::string to_domain_text(std::string_view cell) {
  if (std::none_of(cell.begin(), cell.end(), needs_escape)) return std::string(cell);
  std::string result;
  result.reserve(cell.size());
  for (const char c : cell) {
    const auto byte = static_cast<unsigned char>(c);
    if (needs_escape(c)) {
      result += {escape, hexadecimal_digits[byte >> 4U], hexadecimal_digits[byte & 0xFU]};
    } else {
      result += c;
    }
  }
  return result;
}

std::string to_cell_text(std::string_view domain_text) {
  std::string result;
  result.reserve(domain_text.size());
  for (std::size_t i = 0; i < domain_text.size(); ++i) {
    unsigned int byte = 0;
    const char* hex = domain_text.data() + i + 1;
    if (domain_text[i] == escape && i + 2 < domain_text.size() &&
        std::from_chars(hex, hex + 2, byte, 16).ptr == hex + 2) {
      result += static_cast<char>(byte);
      i += 2;
    } else {
      result += domain_text[i];
    }
  }
  return result;
}

std::string shortest_text(float value) {
  return fewest_digits(value);
}

std::string shortest_value(const column& column, unsigned int code) {
  impls::o_set& domain = *column.get_o_set();
  const std::string printed = column.get_value(code);
  const std::string data_type = domain.get_datatype();
  if (code == 0 || code > domain.size_of_known()) return printed;
  if (data_type == "float") return shortest_of_code<float, std::int32_t>(column, code, printed);
  if (data_type == "double") return shortest_of_code<double, std::int64_t>(column, code, printed);
  return printed;
}

std::string value_text(const column& column, unsigned int code) {
  const bool is_text = column.get_o_set()->get_datatype() == "string";
  return is_text ? to_cell_text(column.get_value(code)) : shortest_value(column, code);
}

bool code_of_text(const column& column, const char* text, unsigned int& code) {
  impls::o_set& domain = *column.get_o_set();
  if (domain.get_datatype() == "string")
    return domain.get_order(to_domain_text(text).c_str(), code);
  return domain.get_order(text, code);
}

bool find_value(const column& column, const char* text, unsigned int& code) {
  impls::o_set& domain = *column.get_o_set();
  const std::string data_type = domain.get_datatype();
  double number = 0;
  if (data_type != "string" && !read_known_number(text, number)) return false;
  long long integer = 0;
  code = 0;
  if ((data_type != "integer" && data_type != "uinteger") || scale_of(column) != nullptr) {
    code_of_text(column, text, code);
  } else if (read_integer(data_type, text, integer)) {
    domain.get_order(std::to_string(integer).c_str(), code);
  }
  return true;
}

bool read_known_number(const char* text, double& number) {
  double value = 0;
  if (!strata::util::read_number(text, value) || std::isnan(value)) return false;
  number = value;
  return true;
}

}  // namespace arbor::tree
