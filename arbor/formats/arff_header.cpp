#include "arbor/formats/arff_header.h"

#include <fmt/format.h>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/formats/arff_line.h"
#include "arbor/formats/lower_case.h"

namespace arbor::tree {

namespace {

constexpr character_set word_ends(" \t{");
constexpr character_set list_ends(",\t}");
constexpr const char* accepted_types =
    "numeric, real, integer, string, date or a list of values in braces";

// After the opening brace.
std::vector<std::string> read_value_list(arff_line& line, const line_reader& lines,
                                         const std::string& attribute) {
  std::vector<std::string> values;
  written_cell value;
  do {
    line.read(value, list_ends);
    // "?" is the unknown value here, too.
    if (value.is_literal || (!value.text.empty() && value.text != "?"))
      values.push_back(value.text);
  } while (line.take_separator());
  if (!line.take('}')) {
    lines.fail(attribute + "its values are not as in {sunny, 'light rain'}, on one line" +
               (line.at_end() ? "" : ": " + in_quotes(line.remaining()) + " is left"));
  }
  if (values.empty()) lines.fail(attribute + "its list of values is empty");
  return values;
}

declared_column read_attribute(arff_line& line, const line_reader& lines) {
  written_cell word;
  line.read(word, word_ends);
  if (word.text.empty()) lines.fail("an attribute without a name; expected @attribute NAME TYPE");
  declared_column column{word.text, "", "", {}};
  const std::string attribute = "attribute " + in_quotes(column.name) + ": ";
  if (line.take('{')) {
    column.kind = "discrete";
    column.data_type = "string";
    column.values = read_value_list(line, lines, attribute);
  } else {
    line.read(word, word_ends);
    const std::string type = lower_case(word.text);
    if (type == "string" || type == "date") {
      column.kind = "discrete";
      column.data_type = "string";
      if (type == "date" && !line.at_end()) line.read(word, word_ends);  // the format
    } else if (type != "numeric" && type != "real" && type != "integer") {
      if (type.empty()) lines.fail(attribute + "its type is missing; expected " + accepted_types);
      lines.fail(fmt::format(
          "{}the type {} is not supported; expected {}{}", attribute, in_quotes(word.text),
          accepted_types,
          type == "relational" ? "; turn the rows of a relational attribute into rows of the table"
                               : did_you_mean(type, {"numeric", "real", "integer", "string"})));
    }
  }
  if (!line.at_end())
    lines.fail(attribute + in_quotes(line.remaining()) + " follows its type; expected nothing");
  return column;
}

}  // namespace

declared_table read_arff_header(line_reader& lines) {
  declared_table result;
  written_cell word;
  for (std::string_view text; lines.next(text);) {
    arff_line line(text, lines);
    if (line.at_end()) continue;
    const std::string_view whole = line.remaining();
    line.read(word, word_ends);
    const std::string declaration = lower_case(word.text);
    if (declaration == "@attribute") {
      result.columns.push_back(read_attribute(line, lines));
    } else if (declaration == "@data") {
      if (!line.at_end())
        lines.fail(in_quotes(line.remaining()) + " follows @data; rows begin on the next line");
      if (result.columns.empty()) lines.fail("@data before any @attribute");
      return result;
    } else if (declaration != "@relation") {
      lines.fail(fmt::format(
          "{} is no line of an ARFF header; expected @relation, @attribute or "
          "@data{}",
          in_quotes(whole), did_you_mean(declaration, {"@relation", "@attribute", "@data"})));
    }
  }
  lines.fail("an ARFF file without a line @data, which its rows follow");
}

}  // namespace arbor::tree
