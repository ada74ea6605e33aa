// arbor rate: how good a split each attribute of a table would make.
#ifndef ARBOR_TOOLS_RATE_COMMAND_H
#define ARBOR_TOOLS_RATE_COMMAND_H

#include "tools/command_line.h"
#include "tools/table_options.h"
#include "tools/workplace.h"

namespace arbor::tools {

class rate_command : public command {
 public:
  // `at` must outlive the command.
  rate_command(CLI::App& app, const workplace& at);
  void run() override;

 private:
  const workplace& place;
  table_options table;
  std::vector<std::string> table_paths;
  std::string min_weight = "2";
  std::string format = "text";
  std::string sort = "ratio";
  std::string threads;
  bool force = false;
};

}  // namespace arbor::tools

#endif
