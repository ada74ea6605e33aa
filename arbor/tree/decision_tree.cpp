#include "arbor/tree/decision_tree.h"

#include <algorithm>
#include <numeric>

namespace arbor::tree {

std::size_t heaviest_class(const std::vector<float>& class_weights) {
  return static_cast<std::size_t>(std::max_element(class_weights.begin(), class_weights.end()) -
                                  class_weights.begin());
}

leaf_weight weigh(const tree_node& node) {
  const double cases = std::accumulate(node.class_weights.begin(), node.class_weights.end(), 0.0);
  return {cases,
          cases - static_cast<double>(node.class_weights[heaviest_class(node.class_weights)])};
}

std::vector<std::size_t> node_parents(const decision_tree& tree) {
  std::vector<std::size_t> parents(tree.nodes.size(), 0);
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    for (unsigned int child = 0; child < node.child_count; ++child)
      parents[node.first_child + child] = i;
  }
  return parents;
}

std::vector<std::size_t> node_depths(const decision_tree& tree) {
  const std::vector<std::size_t> parents = node_parents(tree);
  std::vector<std::size_t> depths(tree.nodes.size(), 0);
  for (std::size_t i = 1; i < depths.size(); ++i)
    depths[i] = depths[parents[i]] + 1;  // parents come first
  return depths;
}

tree_size size_of(const decision_tree& tree) {
  tree_size size;
  size.nodes = tree.nodes.size();
  for (const tree_node& node : tree.nodes) size.leaves += node.is_leaf() ? 1 : 0;
  for (const std::size_t depth : node_depths(tree)) size.depth = std::max(size.depth, depth);
  return size;
}

}  // namespace arbor::tree
