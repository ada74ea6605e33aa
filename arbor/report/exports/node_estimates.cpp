#include "arbor/report/exports/node_estimates.h"

#include <algorithm>

#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

double probability_in(const std::vector<estimated_probability>& estimates, std::size_t entry) {
  const auto found = std::lower_bound(
      estimates.begin(), estimates.end(), entry,
      [](const estimated_probability& a, std::size_t wanted) { return a.entry < wanted; });
  return found != estimates.end() && found->entry == entry ? found->probability : 0;
}

std::vector<estimated_probability> listed_classes(const decision_tree& tree, const tree_node& node,
                                                  std::size_t predicted) {
  constexpr std::size_t most_listed = 20;
  std::vector<estimated_probability> listed;
  if (tree.class_count() <= most_listed) {
    for (std::size_t c = 0; c < tree.class_count(); ++c) listed.push_back({c, 0});
    return listed;
  }
  for (const auto& present : node.class_weights) {
    if (predicted < present.entry && (listed.empty() || listed.back().entry < predicted))
      listed.push_back({predicted, 0});
    listed.push_back({present.entry, 0});
  }
  if (listed.back().entry < predicted) listed.push_back({predicted, 0});
  return listed;
}

}  // namespace

node_estimates::node_estimates(const decision_tree& tree) : predictions(predicted_classes(tree)) {
  const std::vector<std::size_t> parents = node_parents(tree);
  estimates.reserve(tree.nodes.size());
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    const double of_parent = i == 0 ? 0 : parent_weight;
    const double sum = weigh(node).cases + of_parent;
    std::vector<estimated_probability> listed = listed_classes(tree, node, predictions[i]);
    for (auto& [entry, probability] : listed) {
      const double at_parent = i == 0 ? 0 : probability_in(estimates[parents[i]], entry);
      const auto weight = static_cast<double>(weight_of(node, entry));
      probability = (weight + of_parent * at_parent) / sum;
    }
    estimates.push_back(std::move(listed));
  }
}

double node_estimates::probability_of_predicted(std::size_t node) const {
  return probability_in(estimates[node], predictions[node]);
}

}  // namespace arbor::tree
