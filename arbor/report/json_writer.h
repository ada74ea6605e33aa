// Writes JSON piece by piece, with numbers that read back to the same float or double.
//
//   json_writer json;
//   json.open('{').member("name", "golf");
//   json.key("classes").open('[').value("no").value("yes").close().close();
//   std::string text = json.text();
//
// The text grows as it is written. A document in memory would hold the whole report a second time,
// and it allocates even while it is destroyed, which ends the process when memory is short.
#ifndef ARBOR_REPORT_JSON_WRITER_H
#define ARBOR_REPORT_JSON_WRITER_H

#include <cstddef>
#include <optional>
#include <string>

namespace arbor::tree {

class json_writer {
 public:
  // Begins an object with '{' or an array with '['.
  json_writer& open(char bracket);
  // Ends the innermost object or array that is open.
  json_writer& close();

  // The name of the next member of an object; its value must follow.
  json_writer& key(const char* name);

  // A value. Bytes of a text that are not UTF-8 become U+FFFD; a number that is not finite becomes
  // null.
  json_writer& value(const std::string& text);
  json_writer& value(bool truth);
  json_writer& value(const char* text) { return value(std::string(text)); }
  json_writer& value(float number);
  json_writer& value(double number);
  json_writer& value(unsigned int number) { return value(std::size_t{number}); }
  json_writer& value(std::size_t number);
  json_writer& null();

  template <class Scalar>
  json_writer& member(const char* name, const Scalar& scalar) {
    return key(name).value(scalar);
  }

  // A member that is null without a value.
  template <class Scalar>
  json_writer& member(const char* name, const std::optional<Scalar>& scalar) {
    return scalar ? key(name).value(*scalar) : key(name).null();
  }

  // Everything written so far, and a newline.
  std::string text() const { return written + '\n'; }

 private:
  void begin_value();
  void begin_line();
  json_writer& scalar(const std::string& as_json);

  std::string written;
  std::string open_brackets;
  bool is_first = true;  // whether nothing has been written between the innermost brackets
  bool follows_key = false;
};

}  // namespace arbor::tree

#endif
