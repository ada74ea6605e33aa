// arbor help: the same as --help.
#ifndef ARBOR_TOOLS_HELP_COMMAND_H
#define ARBOR_TOOLS_HELP_COMMAND_H

#include <string>

#include "tools/command_line.h"

namespace arbor::tools {

class help_command : public command {
 public:
  explicit help_command(CLI::App& app);
  void run() override;

 private:
  CLI::App& described;  // the program with all its commands
  std::string name;
};

}  // namespace arbor::tools

#endif
