// arbor rate: how good a split each attribute of a table would make.
#ifndef ARBOR_TOOLS_RATE_COMMAND_H
#define ARBOR_TOOLS_RATE_COMMAND_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace arbor::tools {

class rate_command {
 public:
  // Adds the command and its options to `app`.
  explicit rate_command(CLI::App& app);

  bool chosen() const { return command->parsed(); }

  // Prints the ratings on standard output, all else on standard error. Throws what loading a table throws, and
  // usage_error for an option's value that is none.
  void run() const;

 private:
  CLI::App* command;
  std::string table_path;
  std::string class_name;
  std::string weights_name;
  std::string min_weight = "2";
  std::string format = "text";
  std::string sort = "ratio";
  std::vector<std::string> unknown_texts;
  std::vector<std::string> types;
  std::vector<std::string> kinds;
};

}  // namespace arbor::tools

#endif
