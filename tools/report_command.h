// arbor report: a saved tree, and how well it predicts, as a page for a browser.
#ifndef ARBOR_TOOLS_REPORT_COMMAND_H
#define ARBOR_TOOLS_REPORT_COMMAND_H

#include <ostream>

#include "arbor/tree/decision_tree.h"
#include "tools/command_line.h"
#include "tools/output_file.h"
#include "tools/table_options.h"

namespace arbor::tools {

class report_command : public command {
 public:
  explicit report_command(CLI::App& app);
  void run() override;

 private:
  void check_combination() const;
  void write(const tree::decision_tree& model, std::ostream& out) const;
  void write_with_table(const tree::decision_tree& model, std::ostream& out) const;

  table_options table;
  std::string model_path;
  std::vector<std::string> table_paths;
  std::string output_path = "-";
  bool force = false;
};

}  // namespace arbor::tools

#endif
