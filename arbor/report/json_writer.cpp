#include "arbor/report/json_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "arbor/csv/shown_text.h"

namespace arbor::tree {

namespace {

// A document type whose numbers are floats, so that they are printed as such: 0.1, not
// 0.10000000149011612.
using float_json = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                        std::uint64_t, float>;

// A text of UTF-8 without the quotes around it.
std::string escaped(const std::string& text) {
  const std::string quoted = float_json(text).dump();
  return quoted.substr(1, quoted.size() - 2);
}

bool stands_as_it_is(char c) {
  return c >= ' ' && c <= '~' && c != '"' && c != '\\';
}

}  // namespace

std::string json_text(std::string_view text) {
  std::string result = "\"";
  if (std::all_of(text.begin(), text.end(), stands_as_it_is)) return result.append(text) + '"';
  std::string utf8;  // that may stand as it is, but for what JSON itself escapes
  while (!text.empty()) {
    const utf8_character first = first_character(text);
    if (!first.valid) {
      utf8 += fmt::format("\\x{:02X}", static_cast<unsigned char>(text.front()));
    } else if (first.is_printable() || first.point < ' ') {
      utf8 += text.substr(0, first.length);
    } else {
      result += escaped(std::exchange(utf8, {}));
      result += fmt::format("\\u{:04x}", static_cast<unsigned int>(first.point));
    }
    text.remove_prefix(first.length);
  }
  return result + escaped(utf8) + '"';
}

json_writer& json_writer::open(char bracket) {
  begin_value();
  out << bracket;
  open_brackets += bracket;
  is_first = true;
  return *this;
}

json_writer& json_writer::open_numbers() {
  open('[');
  open_brackets.back() = ',';
  return *this;
}

json_writer& json_writer::close() {
  const char bracket = open_brackets.back();
  const bool begins_line = !is_first && !on_one_line();
  open_brackets.pop_back();
  if (begins_line) begin_line();
  out << (bracket == '{' ? '}' : ']');
  if (open_brackets.empty()) out << '\n';
  is_first = false;
  return *this;
}

json_writer& json_writer::key(const char* name) {
  begin_value();
  out << '"' << name << "\": ";
  is_first = false;
  follows_key = true;
  return *this;
}

json_writer& json_writer::value(bool truth) {
  return scalar(truth ? "true" : "false");
}

json_writer& json_writer::value(float number) {
  return scalar(float_json(number).dump());
}

json_writer& json_writer::value(double number) {
  return scalar(nlohmann::json(number).dump());
}

json_writer& json_writer::value(std::size_t number) {
  return scalar(std::to_string(number));
}

json_writer& json_writer::null() {
  return scalar("null");
}

json_writer& json_writer::scalar(std::string_view as_json) {
  begin_value();
  out << as_json;
  is_first = false;
  return *this;
}

// Separates a value from the one before it; after a key it stays on the line.
void json_writer::begin_value() {
  if (!follows_key && !open_brackets.empty()) {
    if (!is_first) out << (on_one_line() ? ", " : ",");
    if (!on_one_line()) begin_line();
  }
  follows_key = false;
}

void json_writer::begin_line() {
  out << '\n' << std::string(2 * open_brackets.size(), ' ');
}

}  // namespace arbor::tree
