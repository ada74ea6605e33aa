// arbor show: a saved tree as text, graph, JSON, picture or code for other programs, and the
// attributes that a test of it could have chosen.
#ifndef ARBOR_TOOLS_SHOW_COMMAND_H
#define ARBOR_TOOLS_SHOW_COMMAND_H

#include "arbor/tree/decision_tree.h"
#include "tools/command_line.h"
#include "tools/table_options.h"

namespace arbor::tools {

class show_command : public command {
 public:
  explicit show_command(CLI::App& app);
  void run() override;

 private:
  void check_combination() const;
  void rate_at_node(const tree::decision_tree& model) const;
  std::size_t chosen_node(const tree::decision_tree& model) const;
  float chosen_weight(const tree::decision_tree& model) const;
  void draw_picture(const std::string& graph) const;

  table_options table;
  std::string model_path;
  std::string format = "text";
  std::string depth;
  std::string picture_path;
  std::string node;
  std::vector<std::string> rated_paths;
  std::string min_weight;
  bool force = false;
};

}  // namespace arbor::tools

#endif
