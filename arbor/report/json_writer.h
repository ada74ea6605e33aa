// Writes JSON piece by piece, with numbers that read back to the same float.
//
//   json_writer json;
//   json.open('{').member("name", "golf").key("classes").open('[').value("no").value("yes").close().close();
//   std::string text = json.text();
//
// A document of the library that quotes texts and prints numbers is not made: it would hold all of
// a report once more, and takes memory even while it is destroyed, which ends the process where
// there is none.
#ifndef ARBOR_REPORT_JSON_WRITER_H
#define ARBOR_REPORT_JSON_WRITER_H

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace arbor::tree {

class json_writer {
 public:
  // Begins an object '{' or an array '['; `close` ends the innermost.
  json_writer& open(char bracket) {
    begin_value();
    written += bracket;
    open_brackets += bracket;
    is_first = true;
    return *this;
  }

  json_writer& close() {
    const char bracket = open_brackets.back();
    open_brackets.pop_back();
    if (!is_first) begin_line();
    written += bracket == '{' ? '}' : ']';
    is_first = false;
    return *this;
  }

  // Of an object: the name of the member that comes next.
  json_writer& key(const char* name) {
    value(name);
    written += ": ";
    follows_key = true;
    return *this;
  }

  // A text, a number, or nullptr. Bytes that are not UTF-8 become U+FFFD.
  template <class Scalar>
  json_writer& value(const Scalar& scalar) {
    begin_value();
    written += float_json(scalar).dump(-1, ' ', false, float_json::error_handler_t::replace);
    is_first = false;
    return *this;
  }

  template <class Scalar>
  json_writer& member(const char* name, const Scalar& scalar) {
    return key(name).value(scalar);
  }

  // All of it, with a newline behind it.
  std::string text() const { return written + '\n'; }

 private:
  using float_json = nlohmann::basic_json<std::map, std::vector, std::string, bool, std::int64_t,
                                          std::uint64_t, float>;

  void begin_value() {
    if (!follows_key && !open_brackets.empty()) {
      if (!is_first) written += ',';
      begin_line();
    }
    follows_key = false;
  }

  void begin_line() {
    written += '\n';
    written.append(2 * open_brackets.size(), ' ');
  }

  std::string written;
  std::string open_brackets;
  bool is_first = true;  // whether nothing has been written between the innermost brackets
  bool follows_key = false;
};

}  // namespace arbor::tree

#endif
