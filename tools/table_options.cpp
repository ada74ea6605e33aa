#include "tools/table_options.h"

#include <algorithm>
#include <cmath>
#include <iostream>
#include <limits>
#include <map>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/store/replacement_stream.h"
#include "arbor/table/column_types.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"
#include "tools/command_line.h"
#include "tools/messages.h"
#include "tools/offered_values.h"
#include "tools/output_file.h"
#include "tools/progress_line.h"
#include "tools/terminal.h"

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
      "rounding them in the file until there are at most 4294967295 steps between the least and "
      "the "
      "greatest";
  if (remark.kind == impls::column::WEIGHTS) return "; what helps is " + rounded;
  std::string wider = option("--type", "string") + ", or " + option("--type", "double");
  if (remark.kind == impls::column::CONTINUOUS) wider += " with " + option("--kind", "discrete");
  return "; what helps is " + wider +
         (remark.kind == impls::column::CLASS ? "" : ", or " + option("--kind", "ignore")) +
         ", or " + rounded;
}

// The options that do what a remark proposes, if it does.
std::string advice(const tree::table_remark& remark, const tree::load_options& chosen) {
  if (remark.loses_numbers)  // a command that takes the types from a model has no option for them
    return chosen.types_from == "--type" ? advice_on_lost_numbers(remark) : "";
  if (!remark.column.empty())
    return "; --kind " + tree::shell_word(remark.column + "=ignore") + " leaves it out";
  if (!remark.to_read.empty()) return advice_on_forms(remark.to_read, chosen.input.numbers);
  if (remark.to_declare.empty()) return "";
  std::string options;
  for (const std::string& text : remark.to_declare)
    options += " --unknown " + tree::shell_word(text);
  return "; if that means unknown, use" + options;
}

std::string advice(const tree::input_remark& remark) {
  using matter = tree::input_remark::matter;
  switch (remark.about) {
    case matter::delimiter:
      return "; --delimiter chooses another character";
    case matter::row_numbers:
      return ", but may be the --id of arbor classify";
    case matter::numeric_names:
      return "; if the first row has none, use --no-header";
    default:
      return "";
  }
}

constexpr const char* column_group = "Columns and rows";

}  // namespace

void table_options::add_to(CLI::App& to) {
  add_cell_options_to(to);
  to.add_option("--class", class_name,
                "The column to predict (default: the last one, or the one that the file declares)")
      ->type_name("NAME")
      ->group(column_group);
  add_id_to(to, "and is no attribute");
  to.add_flag("--skip-unknown-class", skips_unknown_class,
              "Leave out the rows whose class is unknown")
      ->group(column_group);
  offer(to.add_option("--type", types,
                      "A column's data type: integer, uinteger, decimal, float, double or string; "
                      "repeatable"),
        {"integer", "uinteger", "decimal", "float", "double", "string"})
      ->type_name("NAME=TYPE")
      ->take_all()
      ->allow_extra_args(false)
      ->group(column_group);
  add_kinds_to(to);
  to.add_option("--types", types_path,
                "Take kinds, types and values from this file; --class, --type and --kind override "
                "it")
      ->type_name("FILE")
      ->group(column_group);
  to.add_option(
        "--save-types", saved_types_path,
        "Write such a file of this table, to be edited; a column whose values it lists takes no "
        "others")
      ->type_name("FILE")
      ->group(column_group);
}

void table_options::add_kinds_to(CLI::App& to) {
  offer(to.add_option("--kind", kinds,
                      "An attribute's kind: discrete, continuous or ignore; repeatable"),
        {"discrete", "continuous", "ignore"})
      ->type_name("NAME=KIND")
      ->take_all()
      ->allow_extra_args(false)
      ->group(column_group);
}

void table_options::add_id_to(CLI::App& to, const std::string& purpose) {
  to.add_option("--id", id_name, "The column that identifies the rows " + purpose)
      ->type_name("NAME")
      ->group(column_group);
}

void table_options::add_training_options_to(CLI::App& to) {
  add_to(to);
  limits_classes = true;
  to.add_flag("--many-classes", many_classes,
              "Accept a class of more than 1000 values; trees grow slowly with so many")
      ->group(column_group);
}

void table_options::add_cell_options_to(CLI::App& to) {
  parser = &to;
  files.add_to(to);
  to.add_option("--weights", weights_name,
                "The column of weights; a row of weight 3 counts as three rows, one of weight 0 is "
                "left out (default: all rows weigh 1)")
      ->type_name("NAME")
      ->group(column_group);
}

bool table_options::given(const std::string& option) const {
  const CLI::Option* named = parser->get_option_no_throw(option);
  return named != nullptr && named->count() > 0;
}

bool table_options::have(const CLI::Option& option) {
  return option.get_group() == file_options::group || option.get_group() == column_group;
}

tree::load_options table_options::chosen() const {
  for (const std::string option : {"--class", "--weights", "--id"}) {
    refuse_if(given(option) && parser->get_option(option)->as<std::string>().empty(),
              option + ": the name of the column is empty");
  }
  tree::load_options options;
  options.input = files.chosen();
  options.class_name = class_name;
  options.weights_name = weights_name;
  options.id_name = id_name;
  options.types = name_values("--type", types);
  options.kinds = name_values("--kind", kinds);
  if (given("--types")) {
    refuse_if(types_path.empty(), "--types: the name of the file is empty");
    options.declared = tree::read_types(types_path);
  }
  options.skips_unknown_class = skips_unknown_class;
  options.unknown_class_advice = "; --skip-unknown-class leaves such rows out";
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
  options.id_from = "--id";
  options.declared_from = "--types";
  return options;
}

void table_options::check_saving(const std::vector<std::string>& inputs, bool force) const {
  if (!given("--save-types")) return;
  refuse_if(saved_types_path.empty(), "--save-types: the name of the file is empty");
  const output_file types_file{"--save-types", saved_types_path, force};
  if (types_file.is_standard_output()) return;
  for (const std::string& input : inputs) types_file.keep_input(input, "the table");
  types_file.check(tree::file_content::types, "a file of types");
}

void table_options::save_types(const tree::table& of, bool force) const {
  if (!given("--save-types")) return;
  const output_file types_file{"--save-types", saved_types_path, force};
  if (types_file.is_standard_output()) return tree::write_types(std::cout, of);
  tree::file_replacement file(types_file.path, types_file.new_ownership());
  tree::replacement_stream out(file);
  const terminal_guard guard(out, tree::is_terminal(types_file.path));
  tree::write_types(out, of);
  out.flush();
  file.commit();
}

void add_tables(CLI::App& command, std::vector<std::string>& paths) {
  command
      .add_option(
          "TABLE", paths,
          "A CSV or ARFF file, or NAME.data beside NAME.names, also compressed; several files "
          "with the same columns are one table; - is standard input")
      ->type_name("");
}

void check_tables(const std::vector<std::string>& paths) {
  constexpr const char* no_table = "no table; name a CSV file, or - for standard input";
  refuse_if(paths.empty(), no_table);
  for (const std::string& path : paths) refuse_if(path.empty(), no_table);
  refuse_if(std::count(paths.begin(), paths.end(), "-") > 1,
            "standard input can be read only once");
}

void show_remarks(const std::string& table_name, const std::vector<tree::input_remark>& remarks) {
  for (const tree::input_remark& remark : remarks)
    complain(table_name + ": " + remark.text + advice(remark));
}

tree::table read_table(const workplace& place, const std::vector<std::string>& paths,
                       tree::load_options options) {
  check_tables(paths);
  progress_line progress;
  options.progress = [&](std::size_t rows) {
    if (progress.due()) progress.show(std::to_string(rows) + " rows read");
  };
  tree::table table = place.load(paths, options);
  progress.clear();
  show_remarks(table.name, table.input_remarks);
  for (const tree::table_remark& remark : table.remarks)
    complain(table.name + ": " + remark.text + advice(remark, options));
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
