// A decision tree, independent of the table that it was grown on.
//
//   const tree_node& root = tree.nodes.front();
//   if (!root.is_leaf()) use(*tree.attributes[root.attribute], tree.nodes[root.first_child]);
#ifndef ARBOR_TREE_DECISION_TREE_H
#define ARBOR_TREE_DECISION_TREE_H

#include <cstddef>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "arbor/model/column.h"

namespace arbor::tree {

// The weight of the cases of one class at a node.
struct weighted_class {
  unsigned int entry;  // the code of the class less 1
  float weight;        // above 0
};

// A test or a leaf.
struct tree_node {
  static constexpr unsigned int no_attribute = std::numeric_limits<unsigned int>::max();

  // The index of the tested attribute in the tree; no_attribute for a leaf.
  unsigned int attribute = no_attribute;
  // Of a test: its threshold (the domain's null text for a discrete one) and the number of branches
  // that it might have.
  impls::column::partition_desc split;
  // Of a test: its children are child_count nodes from this one on, in the order of their branches.
  // A branch without training cases has no child.
  unsigned int first_child = 0;
  unsigned int child_count = 0;

  // The number of the parent's branch that leads here: for a discrete test the code of the value,
  // for a continuous one 1 up to the threshold and 2 above it. 0 for the root.
  unsigned int branch = 0;
  // That branch's share of the known weight, by which the weight of unknown cases is multiplied.
  float share = 0;
  // The weight of the training cases of each class that occurs, in ascending order of classes. All
  // classes would take too much memory: there may be as many as cases.
  std::vector<weighted_class> class_weights;

  bool is_leaf() const { return attribute == no_attribute; }
};

// What a tree was grown on, and how; see grow_options.
struct tree_origin {
  std::string table;            // its name, as messages show it
  unsigned long long rows = 0;  // the number of training cases
  float min_weight = 0;
  unsigned int max_depth = 0;
  bool pruned = false;
  float confidence = 0;  // of pruning
};

// The columns have names and domains, but no rows.
struct decision_tree {
  std::unique_ptr<impls::column> class_column;
  std::vector<std::unique_ptr<impls::column>> attributes;  // those that some node tests
  std::vector<tree_node> nodes;       // the root first, every child after its parent
  std::optional<tree_origin> origin;  // models of format version 1 do not have it

  std::size_t class_count() const { return class_column->get_distinct() - 1; }
};

// The entries above 0 of the weights of all classes, by code less 1.
std::vector<weighted_class> present_classes(const std::vector<float>& class_weights);

// The weight of a node's training cases of one class, given by its entry.
float weight_of(const tree_node& node, std::size_t entry);

// The entry of the class with the greatest weight; of equal ones the first.
std::size_t heaviest_class(const tree_node& node);

// The weight of a node's training cases, and of those that are not of its heaviest class.
struct leaf_weight {
  double cases;
  double errors;
};
leaf_weight weigh(const tree_node& node);

// The parent of each node; the root is its own parent.
std::vector<std::size_t> node_parents(const decision_tree& tree);
// The number of tests above each node.
std::vector<std::size_t> node_depths(const decision_tree& tree);

struct tree_size {
  std::size_t nodes = 0;
  std::size_t leaves = 0;
  std::size_t depth = 0;  // the number of tests above the deepest leaf
};
tree_size size_of(const decision_tree& tree);

}  // namespace arbor::tree

#endif
