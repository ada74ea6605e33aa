#include "arbor/table/value_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

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

// The floats from -infinity to infinity are numbered by their bits: negative ones downwards from
// -1, the others upwards.
float numbered_float(int number) {
  const unsigned int pattern = number < 0 ? 0x80000000U | static_cast<unsigned int>(-1 - number)  //
                                          : static_cast<unsigned int>(number);
  float value = 0;
  std::memcpy(&value, &pattern, sizeof value);
  return value;
}

// The float of a code, found by comparing: that is exact where printing is not.
float compared_float(impls::o_set& domain, unsigned int code) {
  constexpr int number_of_infinity = 0x7F800000;
  int low = -number_of_infinity - 1;  // the number of -infinity
  int high = number_of_infinity;
  while (low < high) {
    const int middle = static_cast<int>(low + (0LL + high - low) / 2);
    if (domain.leq(code, shortest_text(numbered_float(middle))) == 1) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return numbered_float(low);
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
  std::array<char, 32> buffer{};
  return {buffer.data(), std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr};
}

std::string shortest_value(const column& column, unsigned int code) {
  impls::o_set& domain = *column.get_o_set();
  std::string printed = column.get_value(code);
  double value = 0;
  if (domain.get_datatype() != "float" || code == 0 || code > domain.size_of_known())
    return printed;
  if (!strata::util::read_number(printed.c_str(), value) || std::isnan(value)) return printed;
  std::string shortest = shortest_text(static_cast<float>(value));
  return column.get_index(shortest.c_str()) == code ? shortest
                                                    : shortest_text(compared_float(domain, code));
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
