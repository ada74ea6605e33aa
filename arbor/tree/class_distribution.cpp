#include "arbor/tree/class_distribution.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace arbor::tree {

const tree_node* child_on(const decision_tree& tree, const tree_node& test, unsigned int branch) {
  const auto first = tree.nodes.begin() + test.first_child;
  const auto last = first + test.child_count;
  const auto child = std::lower_bound(
      first, last, branch, [](const tree_node& n, unsigned int b) { return n.branch < b; });
  return branch == every_branch || child == last || child->branch != branch ? nullptr : &*child;
}

void add_leaf(std::vector<double>& distribution, const tree_node& leaf, double weight) {
  const double cases = weigh(leaf).cases;
  for (std::size_t c = 0; c < distribution.size(); ++c)
    distribution[c] += weight * static_cast<double>(leaf.class_weights[c]) / cases;
}

std::vector<double> normalized(std::vector<double> distribution, const tree_node& root) {
  double sum = std::accumulate(distribution.begin(), distribution.end(), 0.0);
  if (!(sum > 0) || !std::isfinite(sum)) {
    distribution.assign(root.class_weights.begin(), root.class_weights.end());
    sum = std::accumulate(distribution.begin(), distribution.end(), 0.0);
  }
  for (double& probability : distribution) probability /= sum;
  return distribution;
}

std::size_t likeliest_class(const std::vector<double>& distribution) {
  return static_cast<std::size_t>(std::max_element(distribution.begin(), distribution.end()) -
                                  distribution.begin());
}

}  // namespace arbor::tree
