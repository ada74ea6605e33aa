// The options of all commands that load a table.
#ifndef ARBOR_TOOLS_TABLE_OPTIONS_H
#define ARBOR_TOOLS_TABLE_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "arbor/table/table_loader.h"

namespace arbor::tools {

class table_options {
 public:
  // Adds the options to a command. This object must stay at its address until the command line has
  // been parsed.
  void add_to(CLI::App& command);
  // Adds them to a command that grows trees, for which a table may have too many classes.
  void add_training_options_to(CLI::App& command);
  // Adds only the options for unknown texts, numbers and weights, for tables whose types and class
  // are those of a model.
  void add_cell_options_to(CLI::App& command);
  // Adds only the option for kinds.
  void add_kinds_to(CLI::App& command);

  // What was chosen. Throws usage_error for a value that an option does not take.
  tree::load_options chosen() const;

 private:
  CLI::App* parser = nullptr;  // of the command that has the options
  std::string class_name;
  std::string weights_name;
  std::vector<std::string> unknown_texts;
  std::string decimal_mark;
  std::vector<std::string> stripped;
  std::vector<std::string> types;
  std::vector<std::string> kinds;
  bool limits_classes = false;
  bool many_classes = false;
};

// Loads a table, and shows its progress and its remarks on standard error. Throws usage_error when
// the path is empty.
tree::table read_table(const std::string& path, tree::load_options options);

// Each reads the value `given` to an option and throws usage_error, naming the option, if it is not
// a finite number from 0 up, a number from 0 to 1, or a whole number from 0 to 4294967295.
float weight_value(const std::string& option, const std::string& given);
float share_value(const std::string& option, const std::string& given);
unsigned int whole_value(const std::string& option, const std::string& given);

}  // namespace arbor::tools

#endif
