// arbor show: a saved tree as text, graph, JSON or picture, and what its tests chose among.
#ifndef ARBOR_TOOLS_SHOW_COMMAND_H
#define ARBOR_TOOLS_SHOW_COMMAND_H

#include "tools/command_line.h"
#include "tools/table_options.h"

namespace arbor::tree {
struct decision_tree;
}

namespace arbor::tools {

class show_command : public command {
 public:
  explicit show_command(CLI::App& app);
  void run() override;

 private:
  void refuse_together(const std::vector<const char*>& options) const;
  void rate(const tree::decision_tree& model, std::size_t node) const;

  table_options table;
  std::string model_path;
  std::string format = "text";
  std::string depth;
  std::string picture_path;
  std::string node;
  std::string rated_path;
  std::string min_weight = "2";
};

}  // namespace arbor::tools

#endif
