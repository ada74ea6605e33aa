// arbor validate: estimates by cross-validation how well trees grown on a table predict.
#ifndef ARBOR_TOOLS_VALIDATE_COMMAND_H
#define ARBOR_TOOLS_VALIDATE_COMMAND_H

#include "arbor/tree/validation/cross_validation.h"
#include "tools/command_line.h"
#include "tools/table_options.h"
#include "tools/tree_options.h"

namespace arbor::tools {

class validate_command : public command {
 public:
  explicit validate_command(CLI::App& app);
  void run() override;

 private:
  tree::validation_options chosen_options() const;

  table_options table;
  tree_options tree_growth;
  std::vector<std::string> table_paths;
  std::string folds = "10";
  std::string repeats = "1";
  std::string seed = "1";
  std::string format = "text";
  bool importance = false;
  bool force = false;
};

}  // namespace arbor::tools

#endif
