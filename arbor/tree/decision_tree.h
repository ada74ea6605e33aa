// A decision tree, apart from the table that it was grown on.
#ifndef ARBOR_TREE_DECISION_TREE_H
#define ARBOR_TREE_DECISION_TREE_H

#include <limits>
#include <memory>
#include <vector>

#include "arbor/model/column.h"

namespace arbor::tree {

struct tree_node {
  static constexpr unsigned int no_attribute = std::numeric_limits<unsigned int>::max();

  unsigned int attribute =
      no_attribute;                     // which of the tree's attributes it tests; none for a leaf
  impls::column::partition_desc split;  // of a test: its threshold, and the number of its branches
  unsigned int first_child =
      0;  // of a test: its children stand together, in the order of their branches
  unsigned int child_count = 0;  // branches without training cases have no child

  unsigned int branch =
      0;            // of its parent: the value's code; below or at a threshold 1, above it 2
  float share = 0;  // of its parent's unknown cases, by which their weight is multiplied
  std::vector<float>
      class_weights;  // of its training cases, entry c that of the class with code c + 1

  bool is_leaf() const { return attribute == no_attribute; }
};

// The columns hold no rows; they keep the names and the domains.
struct decision_tree {
  std::unique_ptr<impls::column> class_column;
  std::vector<std::unique_ptr<impls::column>> attributes;  // those that some node tests
  std::vector<tree_node> nodes;  // the root first, every child behind its parent
};

// The class of the greatest weight, as an entry of `class_weights`; of equal ones the first.
std::size_t heaviest_class(const std::vector<float>& class_weights);

// The sum of weights, and what of it is not the heaviest class.
struct leaf_weight {
  double cases;
  double errors;
};
leaf_weight weigh(const tree_node& node);

// Of each node, its parent (the root is its own) and how many tests stand above it.
std::vector<std::size_t> node_parents(const decision_tree& tree);
std::vector<std::size_t> node_depths(const decision_tree& tree);

struct tree_size {
  std::size_t nodes = 0;
  std::size_t leaves = 0;
  std::size_t depth = 0;  // of tests above the deepest leaf
};
tree_size measure(const decision_tree& tree);

// The root's nodes anew, without those that nothing leads to, in the order of their levels.
std::vector<tree_node> without_unreachable(std::vector<tree_node> nodes);

}  // namespace arbor::tree

#endif
