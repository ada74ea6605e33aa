// The options for how the files of a table are read.
#ifndef ARBOR_TOOLS_FILE_OPTIONS_H
#define ARBOR_TOOLS_FILE_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "arbor/csv/input_options.h"

namespace arbor::tools {

class file_options {
 public:
  // Under which --help shows them.
  static constexpr const char* group = "Reading files";

  // Adds the options to a command. This object must stay at its address until the command line has
  // been parsed.
  void add_to(CLI::App& command);

  // What was chosen. Throws usage_error for a value that an option does not take.
  tree::input_options chosen() const;

 private:
  CLI::App* parser = nullptr;  // of the command that has the options
  std::string format;
  std::string delimiter;
  std::string comment;
  std::string limit;
  std::string decimal_mark;
  std::vector<std::string> unknown_texts;
  std::vector<std::string> stripped;
  bool no_header = false;
  bool keep_blanks = false;
};

}  // namespace arbor::tools

#endif
