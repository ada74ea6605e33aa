// Checks before long work that its result can be written, and will not destroy a file that is still
// wanted.
//
//   const output_file output{"--output", output_path, force};
//   output.keep_input(table_path, "the table");
//   output.check(tree::file_content::classified, "a classified table");
#ifndef ARBOR_TOOLS_OUTPUT_FILE_H
#define ARBOR_TOOLS_OUTPUT_FILE_H

#include <CLI/CLI.hpp>
#include <string>

#include "arbor/store/file_replacement.h"
#include "arbor/store/present_file.h"

namespace arbor::tools {

// A file that a command writes. Each check throws usage_error, naming the option; a file that does
// not exist passes all of them if it can be created.
struct output_file {
  std::string option;
  std::string path;
  bool force = false;  // writes over any file but the inputs

  // "-" and the names that the system has for it. It is no file to check or replace.
  bool is_standard_output() const { return tree::is_standard_output(path); }

  // For the function that replaces the file.
  tree::protection protection() const;

  // Refuses the file that is read as `input`, "-" for standard input; `what` is what it is.
  void keep_input(const std::string& input, const std::string& what) const;

  // Refuses an existing file that is neither of this kind nor empty; `what` is what it should be.
  // Also refuses, by table_error too, a file that cannot be written.
  void check(tree::file_content kind, const std::string& what) const;
};

// Adds --force to a command whose output `option` is; it sets `force`.
void add_force(CLI::App& command, const std::string& option, bool& force);

}  // namespace arbor::tools

#endif
