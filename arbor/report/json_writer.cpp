#include "arbor/report/json_writer.h"

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <vector>

namespace arbor::tree {

namespace {

// A document type whose numbers are floats, so that they are printed as such: 0.1, not
// 0.10000000149011612.
using float_json = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                        std::uint64_t, float>;

std::string dumped(const float_json& scalar) {
  return scalar.dump(-1, ' ', false, float_json::error_handler_t::replace);
}

}  // namespace

json_writer& json_writer::open(char bracket) {
  begin_value();
  written += bracket;
  open_brackets += bracket;
  is_first = true;
  return *this;
}

json_writer& json_writer::close() {
  const char bracket = open_brackets.back();
  open_brackets.pop_back();
  if (!is_first) begin_line();
  written += bracket == '{' ? '}' : ']';
  is_first = false;
  return *this;
}

json_writer& json_writer::key(const char* name) {
  value(name);
  written += ": ";
  follows_key = true;
  return *this;
}

json_writer& json_writer::value(const std::string& text) {
  return scalar(dumped(text));
}

json_writer& json_writer::value(bool truth) {
  return scalar(truth ? "true" : "false");
}

json_writer& json_writer::value(float number) {
  return scalar(dumped(number));
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

json_writer& json_writer::scalar(const std::string& as_json) {
  begin_value();
  written += as_json;
  is_first = false;
  return *this;
}

// Separates a value from the one before it; after a key it stays on the line.
void json_writer::begin_value() {
  if (!follows_key && !open_brackets.empty()) {
    if (!is_first) written += ',';
    begin_line();
  }
  follows_key = false;
}

void json_writer::begin_line() {
  written += '\n';
  written.append(2 * open_brackets.size(), ' ');
}

}  // namespace arbor::tree
