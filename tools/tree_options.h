// The options of all commands that grow trees.
#ifndef ARBOR_TOOLS_TREE_OPTIONS_H
#define ARBOR_TOOLS_TREE_OPTIONS_H

#include <CLI/CLI.hpp>
#include <string>

#include "arbor/tree/grower.h"

namespace arbor::tools {

class tree_options {
 public:
  // Adds the options to a command. This object must stay at its address until the command line has
  // been parsed.
  void add_to(CLI::App& command);

  // What was chosen. Throws usage_error for a value that an option does not take, and for options
  // that do not go together.
  tree::grow_options chosen() const;

  // Whether the minimum weight and the confidence are to be tuned.
  bool tune() const { return tuning; }

 private:
  std::string min_weight;
  std::string max_depth;
  std::string confidence;
  std::string threads;
  bool no_pruning = false;
  bool tuning = false;
};

}  // namespace arbor::tools

#endif
