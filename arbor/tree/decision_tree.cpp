#include "arbor/tree/decision_tree.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace arbor::tree {

std::size_t heaviest_class(const std::vector<float>& class_weights) {
  return static_cast<std::size_t>(std::max_element(class_weights.begin(), class_weights.end()) - class_weights.begin());
}

leaf_weight weigh(const tree_node& node) {
  const double cases = std::accumulate(node.class_weights.begin(), node.class_weights.end(), 0.0);
  return {cases, cases - static_cast<double>(node.class_weights[heaviest_class(node.class_weights)])};
}

tree_size measure(const decision_tree& tree) {
  tree_size size;
  std::vector<std::size_t> depths(tree.nodes.size(), 0);
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    if (node.is_leaf()) ++size.leaves;
    size.depth = std::max(size.depth, depths[i]);
    for (unsigned int child = 0; child < node.child_count; ++child) depths[node.first_child + child] = depths[i] + 1;
  }
  size.nodes = tree.nodes.size();
  return size;
}

std::vector<tree_node> without_unreachable(std::vector<tree_node> nodes) {
  std::vector<tree_node> kept;
  kept.push_back(std::move(nodes.front()));
  for (std::size_t i = 0; i < kept.size(); ++i) {
    const unsigned int first_child = kept[i].first_child;
    kept[i].first_child = static_cast<unsigned int>(kept.size());
    for (unsigned int child = 0; child < kept[i].child_count; ++child) {
      kept.push_back(std::move(nodes[first_child + child]));
    }
  }
  return kept;
}

}  // namespace arbor::tree
