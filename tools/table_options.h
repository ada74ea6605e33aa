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
  // Adds the options to a command. The object must stay where it is until the command line has been
  // read.
  void add_to(CLI::App& command);
  // Adds only the options for unknown texts and weights, for tables whose types and class are those
  // of a model.
  void add_cell_options_to(CLI::App& command);

  // What was chosen. Throws usage_error for a value that an option does not take.
  tree::load_options chosen() const;

 private:
  CLI::App* command = nullptr;
  std::string class_name;
  std::string weights_name;
  std::vector<std::string> unknown_texts;
  std::vector<std::string> types;
  std::vector<std::string> kinds;
};

// Loads a table, and shows its progress and its remarks on standard error. Throws usage_error when
// the path is empty.
tree::table read_table(const std::string& path, tree::load_options options);

// Each reads an option's value, a finite number from 0 up and one from 0 to 1. Throws usage_error.
float weight_value(const std::string& option, const std::string& given);
float share_value(const std::string& option, const std::string& given);

// Reads an option's whole number from 0 up. Throws usage_error.
unsigned int whole_value(const std::string& option, const std::string& given);

}  // namespace arbor::tools

#endif
