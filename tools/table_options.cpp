#include "tools/table_options.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"
#include "tools/command_line.h"
#include "tools/messages.h"
#include "tools/progress_line.h"

namespace arbor::tools {

using tree::in_quotes;

namespace {

// Splits the values NAME=VALUE of a repeatable option; a name may hold a "=", a value may not.
std::map<std::string, std::string> name_values(const std::string& option,
                                               const std::vector<std::string>& given) {
  std::map<std::string, std::string> result;
  for (const std::string& text : given) {
    const std::size_t equals = text.rfind('=');
    if (equals == std::string::npos || equals == 0) {
      throw usage_error(option + ": " + in_quotes(text) +
                        " is not of the form NAME=" + (option == "--type" ? "TYPE" : "KIND"));
    }
    const std::string name = text.substr(0, equals);
    if (!result.emplace(name, text.substr(equals + 1)).second) {
      throw usage_error(option + ": " + in_quotes(name) + " is named twice");
    }
  }
  return result;
}

float number_value(const std::string& option, const std::string& given, float most,
                   const std::string& allowed) {
  double value = 0;
  const bool number =
      strata::util::read_number(given.c_str(), value) && std::isfinite(static_cast<float>(value));
  if (!number || value < 0 || value > static_cast<double>(most)) {
    throw usage_error(option + ": " + in_quotes(given) + " is not " + allowed);
  }
  return static_cast<float>(value);
}

// The options that make a table's numbers those of a form, beyond the ones already chosen.
std::string options_for(const tree::number_form& form, const tree::number_form& chosen) {
  std::string options;
  if (form.grouped && !chosen.grouped) options += std::string(" --decimal ") + form.decimal_mark;
  for (const std::string& text : form.stripped) {
    if (std::count(chosen.stripped.begin(), chosen.stripped.end(), text) == 0)
      options += " --strip " + tree::shell_word(text);
  }
  return options;
}

std::string advice_on_forms(const std::vector<tree::number_form>& forms,
                            const tree::number_form& chosen) {
  const std::string first = options_for(forms.front(), chosen);
  if (forms.size() == 1) return "; to read them, use" + first;
  return "; to read them, use" + first + " if \",\" stands between groups of digits, or" +
         options_for(forms.back(), chosen) + " if it stands before the decimals";
}

// All ways to keep the numbers of a float column apart, or not to need them.
std::string advice_on_lost_numbers(const tree::table_remark& remark) {
  const auto option = [&](const char* name, const char* value) {
    return std::string(name) + " " + tree::shell_word(remark.column + "=" + value);
  };
  const std::string rounded =
      "rounding them in the file, or subtracting a constant from them, until there are at most "
      "4294967295 steps between the least and the greatest";
  if (remark.kind == impls::column::WEIGHTS) return "; what helps is " + rounded;
  std::string wider = option("--type", "string") + ", or " + option("--type", "double");
  if (remark.kind == impls::column::CONTINUOUS) wider += " with " + option("--kind", "discrete");
  return "; what helps is " + wider +
         (remark.kind == impls::column::CLASS ? "" : ", or " + option("--kind", "ignore")) +
         ", or " + rounded;
}

// The options that do what a remark proposes, if it does.
std::string advice(const tree::table_remark& remark, const tree::number_form& chosen) {
  if (remark.loses_numbers) return advice_on_lost_numbers(remark);
  if (!remark.column.empty())
    return "; --kind " + tree::shell_word(remark.column + "=ignore") + " leaves it out";
  if (!remark.to_read.empty()) return advice_on_forms(remark.to_read, chosen);
  if (remark.to_declare.empty()) return "";
  std::string options;
  for (const std::string& text : remark.to_declare)
    options += " --unknown " + tree::shell_word(text);
  return "; if that means unknown, use" + options;
}

// How numbers are written; "." is the usual mark unless groups of digits are allowed, too.
tree::number_form number_form_of(const std::string& mark,
                                 const std::vector<std::string>& stripped) {
  if (!mark.empty() && mark != "." && mark != ",")
    throw usage_error("--decimal: " + in_quotes(mark) + " is neither \".\" nor \",\"");
  for (const std::string& text : stripped) {
    if (text.empty()) throw usage_error("--strip: the text is empty");
    if (text.find_first_of("0123456789") != std::string::npos)
      throw usage_error("--strip: " + in_quotes(text) + " has a digit in it");
  }
  return {mark == "," ? ',' : '.', !mark.empty(), stripped};
}

}  // namespace

void table_options::add_to(CLI::App& to) {
  to.add_option("--class", class_name, "The column to predict (default: the last one)")
      ->type_name("NAME");
  add_cell_options_to(to);
  to.add_option("--type", types,
                "A column's data type: integer, uinteger, decimal, float, double or string; "
                "repeatable")
      ->type_name("NAME=TYPE")
      ->take_all()
      ->allow_extra_args(false);
  add_kinds_to(to);
}

void table_options::add_kinds_to(CLI::App& to) {
  to.add_option("--kind", kinds, "An attribute's kind: discrete, continuous or ignore; repeatable")
      ->type_name("NAME=KIND")
      ->take_all()
      ->allow_extra_args(false);
}

void table_options::add_training_options_to(CLI::App& to) {
  add_to(to);
  limits_classes = true;
  to.add_flag("--many-classes", many_classes,
              "Accept a class of more than 1000 values; trees grow slowly with so many");
}

void table_options::add_cell_options_to(CLI::App& to) {
  parser = &to;
  to.add_option("--weights", weights_name,
                "The column of weights; a row of weight 3 counts as three rows, one of weight 0 is "
                "left out (default: all rows weigh 1)")
      ->type_name("NAME");
  to.add_option("--unknown", unknown_texts,
                "A text that stands for the unknown value; '' is the empty cell, '\"\"' the quoted "
                "empty one; repeatable (default: ? and '')")
      ->type_name("TEXT")
      ->take_all()
      ->allow_extra_args(false);
  to.add_option(
        "--decimal", decimal_mark,
        "The mark before decimals, \",\" or \".\"; digits before it may then stand in groups "
        "of three (default: \".\", without groups)")
      ->type_name("MARK");
  to.add_option("--strip", stripped,
                "A text before or after numbers that is no part of them, as % or $; repeatable")
      ->type_name("TEXT")
      ->take_all()
      ->allow_extra_args(false);
}

tree::load_options table_options::chosen() const {
  for (const char* option : {"--class", "--weights"}) {
    const CLI::Option* named = parser->get_option_no_throw(option);
    if (named != nullptr && named->count() > 0 && named->as<std::string>().empty()) {
      throw usage_error(std::string(option) + ": the name of the column is empty");
    }
  }
  tree::load_options options;
  options.class_name = class_name;
  options.weights_name = weights_name;
  options.unknown_texts = unknown_texts;
  options.numbers = number_form_of(decimal_mark, stripped);
  options.types = name_values("--type", types);
  options.kinds = name_values("--kind", kinds);
  if (limits_classes && !many_classes) {
    options.most_classes = 1000;
    options.most_classes_advice =
        "; divide numbers into a few ranges first, or choose another class; --many-classes accepts "
        "more";
  }
  options.class_from = "--class";
  options.weights_from = "--weights";
  options.types_from = "--type";
  options.kinds_from = "--kind";
  return options;
}

tree::table read_table(const std::string& path, tree::load_options options) {
  if (path.empty()) throw usage_error("no table; name a CSV file, or - for standard input");
  progress_line progress;
  options.progress = [&](std::size_t rows) {
    if (progress.due()) progress.show(std::to_string(rows) + " rows read");
  };
  tree::table table = tree::load_table(path, options);
  progress.clear();
  for (const tree::table_remark& remark : table.remarks)
    complain(table.name + ": " + remark.text + advice(remark, options.numbers));
  return table;
}

float weight_value(const std::string& option, const std::string& given) {
  return number_value(option, given, std::numeric_limits<float>::max(),
                      "a finite number from 0 up");
}

float share_value(const std::string& option, const std::string& given) {
  return number_value(option, given, 1, "a share from 0 to 1");
}

unsigned int whole_value(const std::string& option, const std::string& given) {
  unsigned int value = 0;
  try {
    strata::util::string_util::str2int(given.c_str(), value);
  } catch (const std::runtime_error&) {
    throw usage_error(option + ": " + in_quotes(given) +
                      " is not a whole number from 0 to 4294967295");
  }
  return value;
}

}  // namespace arbor::tools
