#include "arbor/formats/names_file.h"

#include <set>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/formats/lower_case.h"
#include "arbor/formats/names_line.h"

namespace arbor::tree {

namespace {

constexpr character_set separators(",:");
constexpr const char* expected_names =
    "; expected the classes, as in \"no, yes.\", and then for each attribute \"NAME: "
    "continuous.\", \"NAME: discrete.\", \"NAME: VALUE, VALUE.\" or \"NAME: ignore.\"";

class names_parser {
 public:
  explicit names_parser(byte_source& file) : lines(file) {}

  declared_table read();

 private:
  bool has_more();
  std::vector<written_cell> read_list(const std::string& of);
  declared_column read_attribute(const std::string& name);

  line_reader lines;
  names_line line{"", false};
};

// Goes on to the next line with a text, if nothing is left of this one.
bool names_parser::has_more() {
  while (line.at_end()) {
    std::string_view next;
    if (!lines.next(next)) return false;
    line = names_line(next, false);
  }
  return true;
}

// The values, or the type, that stand after `of`.
std::vector<written_cell> names_parser::read_list(const std::string& of) {
  std::vector<written_cell> values;
  char end = ',';
  while (end == ',') {
    written_cell& value = values.emplace_back();
    if (has_more()) end = line.read(value, separators);
    if (end == ':') {
      lines.fail(of + in_quotes(value.text) +
                 " has a colon behind it, which is written as \\: in a value" + expected_names);
    }
    if (value.text.empty()) lines.fail(of + "a value is missing" + expected_names);
  }
  return values;
}

declared_column names_parser::read_attribute(const std::string& name) {
  const std::string attribute = "attribute " + in_quotes(name) + ": ";
  const std::vector<written_cell> list = read_list(attribute);
  const std::string& first = list.front().text;
  if (list.size() == 1 && !list.front().is_literal) {
    const std::string type = lower_case(first);
    if (type == "continuous" || type == "ignore") return {name, type, "", {}};
    // With or without the number of values.
    const std::string discrete = "discrete";
    const std::size_t end = type.find_last_not_of("0123456789 ");
    if (type.rfind(discrete, 0) == 0 && end == discrete.size() - 1)
      return {name, discrete, "string", {}};
    const std::set<std::string> others{"label", "date", "time", "timestamp"};
    const std::string question = did_you_mean(type, {"continuous", "discrete", "ignore"});
    if (others.count(type) > 0 || type.front() == '=' || !question.empty())
      lines.fail(attribute + "the type " + in_quotes(first) + " is not supported" +
                 (question.empty() ? expected_names : question));
  }
  if (first.rfind("[ordered]", 0) == 0)
    lines.fail(attribute + in_quotes(first) + " is not supported" + expected_names);
  declared_column column{name, "discrete", "string", std::vector<std::string>()};
  for (const written_cell& value : list) column.values->push_back(value.text);
  return column;
}

declared_table names_parser::read() {
  declared_table result;
  if (!has_more()) lines.fail(std::string("nothing is declared") + expected_names);
  const std::vector<written_cell> classes = read_list("the classes: ");
  std::set<std::string> names;
  for (written_cell name; has_more();) {
    const char end = line.read(name, separators);
    if (end == '.' && name.text.empty()) continue;  // one period more than are needed
    if (end != ':' || name.text.empty())
      lines.fail(in_quotes(name.text) + " is no attribute" + expected_names);
    result.columns.push_back(read_attribute(name.text));
    names.insert(name.text);
  }
  if (classes.size() == 1) {
    result.class_name = classes.front().text;
    if (names.count(result.class_name) == 0) {
      lines.fail("the file begins with " + in_quotes(result.class_name) +
                 ", which is one class alone and no attribute" + expected_names);
    }
    return result;
  }
  result.class_name = "class";
  for (std::size_t i = 2; names.count(result.class_name) > 0; ++i)
    result.class_name = "class_" + std::to_string(i);
  declared_column column{result.class_name, "", "string", std::vector<std::string>()};
  for (const written_cell& value : classes) column.values->push_back(value.text);
  result.columns.push_back(std::move(column));
  return result;
}

}  // namespace

declared_table read_names_file(byte_source& file) {
  return names_parser(file).read();
}

}  // namespace arbor::tree
