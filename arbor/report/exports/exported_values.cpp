#include "arbor/report/exports/exported_values.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <sstream>
#include <stdexcept>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/report/tree_report.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

constexpr std::size_t head_width = 60;
constexpr float infinity = std::numeric_limits<float>::infinity();

// The float as a double; an infinity is where the next float after the greatest one would be,
// which is what decides whether a number is rounded to it.
double place_of(float number) {
  constexpr double after_greatest = 0x1p128;
  return std::isinf(number) ? std::copysign(after_greatest, static_cast<double>(number))
                            : static_cast<double>(number);
}

bool is_even(float number) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &number, sizeof bits);
  return bits % 2 == 0;
}

std::string attribute_line(const impls::column& attribute) {
  std::string line = fmt::format("{}: {}, {}", in_quotes(attribute.get_name(), head_width),
                                 attribute.get_type(), data_type_of(attribute));
  if (!attribute.is_continuous())
    line += ", " + counted(attribute.get_o_set()->size_of_known(), "value");
  return line;
}

void check_repeated(const std::string& text, const char* language) {
  constexpr std::size_t most_repeated = 1000;
  if (text.size() <= most_repeated) return;
  throw std::runtime_error(
      fmt::format("{} repeats the names and values of a tree, which may have {} bytes; {} has {}",
                  language, most_repeated, in_quotes(text, head_width), text.size()));
}

void check_values(const impls::column& column, const char* language) {
  check_repeated(column.get_name(), language);
  for (unsigned int code = 1; code <= column.get_o_set()->size_of_known(); ++code)
    check_repeated(column.get_value(code), language);
}

}  // namespace

value_form form_of(const impls::column& attribute) {
  const std::string type = data_type_of(attribute);
  if (type == "string") return value_form::text;
  if (type == "float") return value_form::single_number;
  return type == "double" ? value_form::double_number : value_form::exact_number;
}

bool exceeds_double(const impls::column& attribute) {
  const decimal_scale* const scale = scale_of(attribute);
  if (scale == nullptr) return false;
  constexpr std::size_t most_digits = std::numeric_limits<double>::digits10;
  const auto is_long = [&](unsigned int code) {
    const std::string text = attribute.get_value(code);
    const std::size_t begin = text.front() == '-' ? 1 : 0;
    return std::min(text.find('.'), text.size()) - begin + scale->decimals > most_digits;
  };
  const unsigned int values = attribute.get_o_set()->size_of_known();
  return values > 0 && (is_long(1) || is_long(values));
}

double double_number(const std::string& text) {
  double number = 0;
  read_known_number(text.c_str(), number);
  return number;
}

float single_number(const std::string& text) {
  return static_cast<float>(double_number(text));
}

rounding_bound bound_of(float number) {
  if (number == infinity) return {0, false, true};
  const double middle = (place_of(number) + place_of(std::nextafter(number, infinity))) / 2;
  return {middle, is_even(number), false};  // a number in the middle is rounded to the even one
}

std::string double_text(double number) {
  const std::string text = fmt::format("{}", number);
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

void check_repeated_texts(const decision_tree& tree, const char* language) {
  check_values(*tree.class_column, language);
  for (const auto& attribute : tree.attributes) {
    check_repeated(attribute->get_name(), language);
    if (!attribute->is_continuous()) check_values(*attribute, language);
  }
}

std::string comment_text(const std::string& printable_text) {
  std::string result;
  for (const char c : printable_text) {
    const char before = result.empty() ? ' ' : result.back();
    const bool is_mark =
        (before == '*' && c == '/') || (before == '/' && c == '*') || (before == '?' && c == '?');
    if (is_mark) result += ' ';
    result += c;
  }
  return result;
}

std::vector<std::string> head_lines(const decision_tree& tree) {
  std::istringstream text(description(tree, head_width));
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(comment_text(line));
  for (const auto& attribute : tree.attributes)
    lines.push_back(comment_text(attribute_line(*attribute)));
  return lines;
}

void write_head(std::ostream& out, const decision_tree& tree, const std::string& prefix,
                const std::vector<std::string>& notes) {
  for (const std::string& line : head_lines(tree)) out << prefix << line << '\n';
  for (const std::string& note : notes) out << prefix << comment_text(note) << '\n';
}

}  // namespace arbor::tree
