// The probabilities of the classes of a case, from the leaves of a tree that it reaches.
//
//   const class_probabilities probabilities(tree);
//   std::vector<double> distribution = probabilities.of_case([&](std::size_t test) { ... });
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

// Which probabilities a leaf gives.
enum class leaf_estimate {
  // The m-estimate toward those of its parent, which are estimated in the same way; those of the
  // root are the shares of its cases. With the class weights w, their sum n, and m = 2:
  //
  //   p = (w + m p_parent) / (n + m)
  //
  // Few cases do not make a class certain or impossible, and many outweigh their parent:
  // B. Cestnik, "Estimating probabilities: a crucial task in machine learning", Proceedings of the
  // 9th European Conference on Artificial Intelligence (1990), 147-149.
  smoothed,
  // The share of each class in the weight of its training cases.
  training_share
};

// The tree must outlive this object. Any number of threads may use one.
class class_probabilities {
 public:
  explicit class_probabilities(const decision_tree& of_tree,
                               leaf_estimate chosen = leaf_estimate::smoothed);

  // The probability of each class; entry c is that of the class with code c + 1. `branch_of`
  // returns the number of the branch that the case takes at a test, given by its index in the tree,
  // or every_branch.
  template <class BranchOf>
  std::vector<double> of_case(BranchOf branch_of) const;

 private:
  friend std::vector<std::size_t> predicted_classes(const decision_tree& tree);

  void add_node(std::vector<double>& distribution, std::size_t node, double weight) const;
  std::vector<double> normalized(std::vector<double> distribution) const;

  const decision_tree& tree;
  leaf_estimate estimate;
  std::vector<std::size_t> parents;  // by node
  std::vector<double> case_weights;  // by node
};

// By node: the entry of the class that is predicted where a case reaches this node and no other, as
// if it were a leaf.
std::vector<std::size_t> predicted_classes(const decision_tree& tree);

// The entry of the class with the greatest probability; of equal ones the first.
std::size_t likeliest_class(const std::vector<double>& distribution);

// -- Implementation --

template <class BranchOf>
std::vector<double> class_probabilities::of_case(BranchOf branch_of) const {
  std::vector<double> result(tree.class_count(), 0.0);
  std::vector<std::pair<std::size_t, double>> open{{0, 1.0}};
  while (!open.empty()) {
    const auto [index, weight] = open.back();
    open.pop_back();
    const tree_node& node = tree.nodes[index];
    if (node.is_leaf()) {
      add_node(result, index, weight);
    } else if (const tree_node* child = child_on(tree, node, branch_of(index))) {
      open.emplace_back(child - tree.nodes.data(), weight);
    } else {
      for (std::size_t i = node.first_child; i < node.first_child + node.child_count; ++i) {
        open.emplace_back(i, weight * static_cast<double>(tree.nodes[i].share));
      }
    }
  }
  return normalized(std::move(result));
}

}  // namespace arbor::tree

#endif
