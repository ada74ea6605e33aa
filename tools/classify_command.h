// arbor classify: what a saved tree says of the rows of a table.
#ifndef ARBOR_TOOLS_CLASSIFY_COMMAND_H
#define ARBOR_TOOLS_CLASSIFY_COMMAND_H

#include "tools/command_line.h"
#include "tools/table_options.h"

namespace arbor::tools {

class classify_command : public command {
 public:
  explicit classify_command(CLI::App& app);
  void run() override;

 private:
  table_options table;
  std::string model_path;
  std::string table_path;
  std::string output_path;
  bool all_probabilities = false;
};

}  // namespace arbor::tools

#endif
