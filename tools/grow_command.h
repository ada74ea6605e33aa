// arbor grow: grows a tree on a table and saves it.
#ifndef ARBOR_TOOLS_GROW_COMMAND_H
#define ARBOR_TOOLS_GROW_COMMAND_H

#include "arbor/tree/grower.h"
#include "tools/command_line.h"
#include "tools/table_options.h"

namespace arbor::tools {

class grow_command : public command {
 public:
  explicit grow_command(CLI::App& app);
  void run() override;

 private:
  tree::grow_options chosen_options() const;
  unsigned int chosen_threads() const;
  void check_model_path() const;

  table_options table;
  std::string table_path;
  std::string model_path;
  std::string min_weight = "2";
  std::string max_depth;
  std::string confidence = "0.1";
  std::string holdout = "0";
  std::string threads;
  std::string seed = "1";
  bool no_pruning = false;
};

}  // namespace arbor::tools

#endif
