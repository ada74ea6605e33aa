#include "arbor/tree/decision_tree.h"

#include <algorithm>

namespace arbor::tree {

std::vector<weighted_class> present_classes(const std::vector<float>& class_weights) {
  std::vector<weighted_class> present;
  for (std::size_t i = 0; i < class_weights.size(); ++i) {
    if (class_weights[i] > 0) present.push_back({static_cast<unsigned int>(i), class_weights[i]});
  }
  return present;
}

float weight_of(const tree_node& node, std::size_t entry) {
  const auto found = std::lower_bound(
      node.class_weights.begin(), node.class_weights.end(), entry,
      [](const weighted_class& present, std::size_t wanted) { return present.entry < wanted; });
  return found != node.class_weights.end() && found->entry == entry ? found->weight : 0;
}

std::size_t heaviest_class(const tree_node& node) {
  const auto lighter = [](const weighted_class& a, const weighted_class& b) {
    return a.weight < b.weight;
  };
  return std::max_element(node.class_weights.begin(), node.class_weights.end(), lighter)->entry;
}

leaf_weight weigh(const tree_node& node) {
  double cases = 0;
  for (const auto& present : node.class_weights) cases += static_cast<double>(present.weight);
  return {cases, cases - static_cast<double>(weight_of(node, heaviest_class(node)))};
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
