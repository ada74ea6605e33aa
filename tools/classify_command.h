// arbor classify: predicts the class of each row of a table with a saved tree.
#ifndef ARBOR_TOOLS_CLASSIFY_COMMAND_H
#define ARBOR_TOOLS_CLASSIFY_COMMAND_H

#include <ostream>

#include "arbor/tree/table_classification.h"
#include "tools/command_line.h"
#include "tools/output_file.h"
#include "tools/table_options.h"
#include "tools/workplace.h"

namespace arbor::tools {

class classify_command : public command {
 public:
  // `at` must outlive the command.
  classify_command(CLI::App& app, const workplace& at);
  void run() override;

 private:
  void check_combination() const;
  tree::classification_options chosen_options(const tree::decision_tree& model) const;
  tree::classification_result classify(const tree::decision_tree& model, std::ostream* rows) const;
  void check_file(const output_file& output) const;
  tree::classification_result classify_into_file(const tree::decision_tree& model,
                                                 const output_file& output) const;

  const workplace& place;
  table_options table;
  std::string model_path;
  std::vector<std::string> table_paths;
  std::string output_path = "-";
  std::string class_name;
  std::string threads;
  bool all_probabilities = false;
  bool unsmoothed = false;
  bool strict = false;
  bool quiet = false;
  bool force = false;
};

}  // namespace arbor::tools

#endif
