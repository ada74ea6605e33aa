#include "arbor/tree/attribute_importance.h"

#include <cmath>

namespace arbor::tree {

namespace {

double term(double weight) {
  return weight > 0 ? weight * std::log2(weight) : 0;
}

// The entropy of a node's classes in bits, times the weight of its cases.
double class_entropy(const tree_node& node) {
  double entropy = term(weigh(node).cases);
  for (const auto& present : node.class_weights)
    entropy -= term(static_cast<double>(present.weight));
  return entropy;
}

// How much less the entropy of a test's children is than its own. The weight of the children falls
// short of that of the test where cases of which little was left have been dropped.
double entropy_taken(const decision_tree& tree, const tree_node& test) {
  double weight_below = 0;
  double entropy_below = 0;
  for (std::size_t i = test.first_child; i < test.first_child + test.child_count; ++i) {
    weight_below += weigh(tree.nodes[i]).cases;
    entropy_below += class_entropy(tree.nodes[i]);
  }
  return class_entropy(test) - entropy_below * (weigh(test).cases / weight_below);
}

}  // namespace

std::vector<double> importance_of_attributes(const decision_tree& tree) {
  std::vector<double> importance(tree.attributes.size(), 0.0);
  const double all_cases = weigh(tree.nodes.front()).cases;
  for (const tree_node& node : tree.nodes) {
    if (!node.is_leaf()) importance[node.attribute] += entropy_taken(tree, node) / all_cases;
  }
  return importance;
}

}  // namespace arbor::tree
