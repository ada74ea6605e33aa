// The probabilities of the classes of a case, from the leaves of a tree that it reaches.
//
// A case goes down the branch of its value. If the value is unknown, or no training case of the
// node had it, the case goes down every branch, its weight multiplied by the branch's share. The
// distributions of all leaves that it reaches are added up.
#ifndef ARBOR_TREE_CLASS_DISTRIBUTION_H
#define ARBOR_TREE_CLASS_DISTRIBUTION_H

#include <cstddef>
#include <utility>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Stands for the number of a branch where a case goes down every branch. No branch has it.
constexpr unsigned int every_branch = 0;

// The child on a branch of a test, given by its number; null if the case goes down every branch.
const tree_node* child_on(const decision_tree& tree, const tree_node& test, unsigned int branch);

// Adds to `distribution` that of a leaf, multiplied by `weight`.
void add_leaf(std::vector<double>& distribution, const tree_node& leaf, double weight);

// Divides by the sum. Where so many shares have been multiplied that the sum is 0 or not a finite
// number, the classes of the root are all that is known.
std::vector<double> normalized(std::vector<double> distribution, const tree_node& root);

// The probability of each class; entry c is that of the class with code c + 1. `branch_of` returns
// the number of the branch that the case takes at a test, given by its index in the tree, or
// every_branch.
template <class BranchOf>
std::vector<double> distribution_of(const decision_tree& tree, BranchOf branch_of) {
  std::vector<double> result(tree.nodes.front().class_weights.size(), 0.0);
  std::vector<std::pair<std::size_t, double>> open{{0, 1.0}};
  while (!open.empty()) {
    const auto [index, weight] = open.back();
    open.pop_back();
    const tree_node& node = tree.nodes[index];
    if (node.is_leaf()) {
      add_leaf(result, node, weight);
    } else if (const tree_node* child = child_on(tree, node, branch_of(index))) {
      open.emplace_back(child - tree.nodes.data(), weight);
    } else {
      for (std::size_t i = node.first_child; i < node.first_child + node.child_count; ++i) {
        open.emplace_back(i, weight * static_cast<double>(tree.nodes[i].share));
      }
    }
  }
  return normalized(std::move(result), tree.nodes.front());
}

// The entry of the class with the greatest probability; of equal ones the first.
std::size_t likeliest_class(const std::vector<double>& distribution);

}  // namespace arbor::tree

#endif
