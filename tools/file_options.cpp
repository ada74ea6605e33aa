#include "tools/file_options.h"

#include <cctype>
#include <map>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "tools/command_line.h"
#include "tools/offered_values.h"
#include "tools/table_options.h"

namespace arbor::tools {

using tree::in_quotes;

namespace {

char delimiter_value(const std::string& given) {
  static const std::map<std::string, char> names{{"comma", ','}, {"semicolon", ';'},
                                                 {"tab", '\t'},  {"\\t", '\t'},
                                                 {"bar", '|'},   {"space", ' '}};
  const auto named = names.find(given);
  if (named != names.end()) return named->second;
  const bool fits = given.size() == 1 &&
                    std::string("\"\r\n").find(given[0]) == std::string::npos &&
                    std::isalnum(static_cast<unsigned char>(given[0])) == 0 &&
                    static_cast<unsigned char>(given[0]) < 0x80;
  std::vector<std::string> choices;
  for (const auto& name : names) choices.push_back(name.first);
  refuse_if(!fits, "--delimiter: " + in_quotes(given) +
                       " is none of comma, semicolon, tab, bar and space, and no other sign" +
                       tree::did_you_mean(given, choices));
  return given[0];
}

// "500", "64K", "2G"
unsigned long long size_value(const std::string& option, const std::string& given) {
  const std::string units = "KMGT";
  std::string digits = given;
  unsigned int shift = 0;
  if (!digits.empty() && units.find(digits.back()) != std::string::npos) {
    shift = 10 * (static_cast<unsigned int>(units.find(digits.back())) + 1);
    digits.pop_back();
  }
  const std::size_t most_digits = shift == 0 ? 18 : 6;  // so that any number of them fits
  const bool is_number = !digits.empty() && digits.size() <= most_digits &&
                         digits.find_first_not_of("0123456789") == std::string::npos;
  refuse_if(!is_number,
            option + ": " + in_quotes(given) + " is no number of bytes, such as 500M, 4G or 2T");
  const unsigned long long size = std::stoull(digits) << shift;
  refuse_if(size == 0, option + ": nothing can be read with a limit of 0 bytes");
  return size;
}

// How numbers are written; "." is the usual mark unless groups of digits are allowed, too.
tree::number_form number_form_of(const std::string& mark,
                                 const std::vector<std::string>& stripped) {
  refuse_if(!mark.empty() && mark != "." && mark != ",",
            "--decimal: " + in_quotes(mark) + " is neither \".\" nor \",\"");
  for (const std::string& text : stripped) {
    refuse_if(text.empty(), "--strip: the text is empty");
    refuse_if(text.find_first_of("0123456789") != std::string::npos,
              "--strip: " + in_quotes(text) + " has a digit in it");
    refuse_if(text.size() == 1 && text.find_first_of("+-.,") == 0,
              "--strip: " + in_quotes(text) + " may be a part of a number");
  }
  return {mark == "," ? ',' : '.', !mark.empty(), stripped};
}

}  // namespace

void file_options::add_to(CLI::App& to) {
  parser = &to;
  offer(to.add_option("--input", format,
                      "The format of the files: csv, arff or names (default: by the ending of the "
                      "name, .arff, .names, .data or .test, else csv)"),
        {"csv", "arff", "names"})
      ->type_name("FORMAT")
      ->group(group);
  offer(to.add_option("--delimiter", delimiter,
                      "The character between cells: comma, semicolon, tab, bar, space or another "
                      "sign (default: found from the first lines)"),
        {"comma", "semicolon", "tab", "bar", "space"})
      ->type_name("CHAR")
      ->group(group);
  to.add_flag("--no-header", no_header,
              "The first row has no names; columns are column_1, column_2 and so on")
      ->group(group);
  to.add_option("--unknown", unknown_texts,
                "A text that stands for the unknown value; '' is the empty cell, '\"\"' the quoted "
                "empty one; repeatable (default: ? and '')")
      ->type_name("TEXT")
      ->take_all()
      ->allow_extra_args(false)
      ->group(group);
  to.add_option(
        "--decimal", decimal_mark,
        "The mark before decimals, \",\" or \".\"; digits before it may then stand in groups "
        "of three (default: \".\", without groups)")
      ->type_name("MARK")
      ->group(group);
  to.add_option("--strip", stripped,
                "A text before or after numbers that is no part of them, as % or $; repeatable")
      ->type_name("TEXT")
      ->take_all()
      ->allow_extra_args(false)
      ->group(group);
  to.add_option("--comment", comment, "Skip the lines that begin with this text")
      ->type_name("TEXT")
      ->group(group);
  to.add_flag("--keep-blanks", keep_blanks,
              "Blanks around a cell are part of it (default: only in quotes)")
      ->group(group);
  to.add_option("--limit", limit,
                "The most bytes that a compressed or sparse file may expand to, as 500M or 4G "
                "(default: 1G, or 100 times its size if that is more)")
      ->type_name("SIZE")
      ->group(group);
}

tree::input_options file_options::chosen() const {
  tree::input_options options;
  const auto given = [&](const char* option) { return parser->count(option) > 0; };
  check_offered(*parser, "--input");
  options.format = format;
  if (given("--delimiter")) options.delimiter = delimiter_value(delimiter);
  options.has_names = !no_header;
  options.unknown_texts = unknown_texts;
  refuse_if(given("--decimal") && decimal_mark.empty(), "--decimal: the mark is empty");
  options.numbers = number_form_of(decimal_mark, stripped);
  options.keeps_blanks = keep_blanks;
  refuse_if(given("--comment") &&
                (comment.empty() || comment.find_first_of("\"\r\n") != std::string::npos),
            "--comment: " + in_quotes(comment) + " is empty or has a quote or a line end in it");
  options.comment = comment;
  if (given("--limit")) options.limit.bytes = size_value("--limit", limit);
  options.limit.set_by = "--limit";
  return options;
}

}  // namespace arbor::tools
