// The probabilities of the classes at every node of a tree.
//
//   const node_estimates estimates(tree);
//   for (const auto& [entry, probability] : estimates.at(node)) ...
#ifndef ARBOR_REPORT_EXPORTS_NODE_ESTIMATES_H
#define ARBOR_REPORT_EXPORTS_NODE_ESTIMATES_H

#include <cstddef>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

struct estimated_probability {
  std::size_t entry;  // the code of the class less 1
  double probability;
};

// Estimates the smoothed probabilities (class_distribution.h) at all nodes at once, in time and
// memory in proportion to the tree. Of more than twenty classes only those that occur at a node
// and the predicted one have an estimate there.
class node_estimates {
 public:
  explicit node_estimates(const decision_tree& tree);

  // In ascending order of classes.
  const std::vector<estimated_probability>& at(std::size_t node) const { return estimates[node]; }
  std::size_t predicted(std::size_t node) const { return predictions[node]; }
  double probability_of_predicted(std::size_t node) const;

 private:
  std::vector<std::size_t> predictions;                       // by node
  std::vector<std::vector<estimated_probability>> estimates;  // by node
};

}  // namespace arbor::tree

#endif
