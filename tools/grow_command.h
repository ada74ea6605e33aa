// arbor grow: grows a tree on a table and saves it.
#ifndef ARBOR_TOOLS_GROW_COMMAND_H
#define ARBOR_TOOLS_GROW_COMMAND_H

#include "arbor/tree/grower.h"
#include "tools/command_line.h"
#include "tools/output_file.h"
#include "tools/table_options.h"
#include "tools/tree_options.h"
#include "tools/workplace.h"

namespace arbor::tools {

class grow_command : public command {
 public:
  // `at` must outlive the command.
  grow_command(CLI::App& app, const workplace& at);
  void run() override;

 private:
  void check_files(const tree::input_options& input) const;
  void check_test(const std::string& path, const tree::input_options& input) const;
  output_file model_file() const;
  void evaluate_on_test_table(const tree::decision_tree& grown,
                              const tree::load_options& load) const;

  const workplace& place;
  table_options table;
  tree_options tree_growth;
  std::vector<std::string> table_paths;
  std::string model_path;
  std::vector<std::string> test_paths;
  std::string holdout = "0";
  std::string seed = "1";
  bool force = false;
};

}  // namespace arbor::tools

#endif
