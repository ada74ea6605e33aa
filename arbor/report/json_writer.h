// Writes JSON piece by piece, with numbers that read back to the same float or double.
//
//   json_writer json(std::cout);
//   json.open('{').member("name", "golf");
//   json.key("classes").open('[').value("no").value("yes").close().close();
//
// Nothing is kept in memory. A document there would hold the whole report, and it allocates even
// while it is destroyed, which ends the process when memory is short.
#ifndef ARBOR_REPORT_JSON_WRITER_H
#define ARBOR_REPORT_JSON_WRITER_H

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace arbor::tree {

// A text as JSON, in double quotes. What a terminal might obey is escaped by \u, see shown_text.h,
// and a byte that is not UTF-8, which JSON cannot have, becomes the four characters \xNN.
std::string json_text(std::string_view text);

// The stream must outlive this object.
class json_writer {
 public:
  explicit json_writer(std::ostream& to) : out(to) {}

  // Begins an object with '{' or an array with '['.
  json_writer& open(char bracket);
  // Begins an array of numbers, which stand on one line.
  json_writer& open_numbers();
  // Ends the innermost object or array that is open. A line feed follows the outermost one.
  json_writer& close();

  // The name of the next member of an object, in plain letters; its value must follow.
  json_writer& key(const char* name);

  // A value. A number that is not finite becomes null.
  json_writer& value(const std::string& text) { return scalar(json_text(text)); }
  json_writer& value(bool truth);
  json_writer& value(const char* text) { return scalar(json_text(text)); }
  json_writer& value(float number);
  json_writer& value(double number);
  json_writer& value(unsigned int number) { return value(std::size_t{number}); }
  json_writer& value(std::size_t number);
  json_writer& null();
  // A value that is JSON already: a text, a number, true, false or null.
  json_writer& scalar(std::string_view as_json);

  template <class Scalar>
  json_writer& member(const char* name, const Scalar& scalar) {
    return key(name).value(scalar);
  }

  // A member that is null without a value.
  template <class Scalar>
  json_writer& member(const char* name, const std::optional<Scalar>& scalar) {
    return scalar ? key(name).value(*scalar) : key(name).null();
  }

 private:
  void begin_value();
  void begin_line();
  bool on_one_line() const { return !open_brackets.empty() && open_brackets.back() == ','; }

  std::ostream& out;
  std::string open_brackets;  // ',' stands for an array on one line
  bool is_first = true;       // whether nothing has been written between the innermost brackets
  bool follows_key = false;
};

// Writes the first two members of every document: which one it is, and the version of its form,
// which changes when a member is removed or gets another meaning, not when one is added.
constexpr unsigned int json_version = 1;
inline void write_format(json_writer& json, const char* name) {
  json.member("format", name).member("version", json_version);
}

}  // namespace arbor::tree

#endif
