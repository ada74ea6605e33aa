#include "tools/table_options.h"

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

// The options that do what a remark proposes, if it does.
std::string advice(const tree::table_remark& remark) {
  if (!remark.to_ignore.empty())
    return "; --kind " + tree::shell_word(remark.to_ignore + "=ignore") + " leaves it out";
  if (remark.to_declare.empty()) return "";
  std::string options;
  for (const std::string& text : remark.to_declare)
    options += " --unknown " + tree::shell_word(text);
  return "; if that means unknown, use" + options;
}

}  // namespace

void table_options::add_to(CLI::App& to) {
  to.add_option("--class", class_name, "The column to predict (default: the last one)")
      ->type_name("NAME");
  add_cell_options_to(to);
  to.add_option("--type", types,
                "A column's data type: integer, uinteger, float, double or string; repeatable")
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
    complain(table.name + ": " + remark.text + advice(remark));
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
