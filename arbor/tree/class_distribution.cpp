#include "arbor/tree/class_distribution.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace arbor::tree {

namespace {

// Adds the weights of a node's classes, each multiplied by `factor`.
void add_classes(std::vector<double>& distribution, const tree_node& node, double factor) {
  for (const auto& present : node.class_weights)
    distribution[present.entry] += factor * static_cast<double>(present.weight);
}

}  // namespace

const tree_node* child_on(const decision_tree& tree, const tree_node& test, unsigned int branch) {
  const auto first = tree.nodes.begin() + test.first_child;
  const auto last = first + test.child_count;
  const auto child = std::lower_bound(
      first, last, branch, [](const tree_node& n, unsigned int b) { return n.branch < b; });
  return branch == every_branch || child == last || child->branch != branch ? nullptr : &*child;
}

class_probabilities::class_probabilities(const decision_tree& of_tree, leaf_estimate chosen)
    : tree(of_tree), estimate(chosen), parents(node_parents(of_tree)) {
  for (const tree_node& node : tree.nodes) case_weights.push_back(weigh(node).cases);
}

// Walks up from the node. Each node on the way adds its classes and leaves to its parent the part
// of the weight that the parent's estimate has in its own.
void class_probabilities::add_node(std::vector<double>& distribution, std::size_t node,
                                   double weight) const {
  constexpr double m = 2;
  constexpr double negligible = 0x1p-60;  // too little to change a sum in double
  const bool smooths = estimate == leaf_estimate::smoothed;
  double left = weight;
  while (smooths && node != 0) {
    const double factor = left / (case_weights[node] + m);
    add_classes(distribution, tree.nodes[node], factor);
    left = m * factor;
    if (!(left > negligible * weight)) return;
    node = parents[node];
  }
  add_classes(distribution, tree.nodes[node], left / case_weights[node]);
}

// Divides by the sum. Where so many shares have been multiplied that the sum is 0 or not a finite
// number, the classes of the root are all that is known.
std::vector<double> class_probabilities::normalized(std::vector<double> distribution) const {
  double sum = std::accumulate(distribution.begin(), distribution.end(), 0.0);
  if (!(sum > 0) || !std::isfinite(sum)) {
    std::fill(distribution.begin(), distribution.end(), 0.0);
    add_node(distribution, 0, 1);
    sum = std::accumulate(distribution.begin(), distribution.end(), 0.0);
  }
  for (double& probability : distribution) probability /= sum;
  return distribution;
}

std::vector<std::size_t> predicted_classes(const decision_tree& tree) {
  const class_probabilities probabilities(tree);
  std::vector<std::size_t> predicted;
  for (std::size_t node = 0; node < tree.nodes.size(); ++node) {
    std::vector<double> distribution(tree.class_count(), 0.0);
    probabilities.add_node(distribution, node, 1);
    predicted.push_back(likeliest_class(probabilities.normalized(std::move(distribution))));
  }
  return predicted;
}

std::size_t likeliest_class(const std::vector<double>& distribution) {
  return static_cast<std::size_t>(std::max_element(distribution.begin(), distribution.end()) -
                                  distribution.begin());
}

}  // namespace arbor::tree
