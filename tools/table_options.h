// The options that every command has that loads a table.
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
  // Adds only those that tell what is unknown and what weighs how much, for tables whose types and
  // class a model tells.
  void add_cell_options_to(CLI::App& command);

  // What was chosen. Throws usage_error for an option's value that is none.
  tree::load_options chosen() const;

 private:
  CLI::App* command = nullptr;
  std::string class_name;
  std::string weights_name;
  std::vector<std::string> unknown_texts;
  std::vector<std::string> types;
  std::vector<std::string> kinds;
};

// Loads a table, showing progress and what there is to remark on standard error. Throws usage_error
// without a path.
tree::table read_table(const std::string& path, tree::load_options options);

// Reads an option's finite number from 0 up, and from 0 to 1. Throws usage_error.
float weight_value(const std::string& option, const std::string& given);
float share_value(const std::string& option, const std::string& given);

// Reads an option's whole number from 0 up. Throws usage_error.
unsigned int whole_value(const std::string& option, const std::string& given);

}  // namespace arbor::tools

#endif
