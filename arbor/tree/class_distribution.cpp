#include "arbor/tree/class_distribution.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace arbor::tree {

namespace {

// Adds the weights of a node's classes, each multiplied by `factor`.
void add_classes(std::vector<double>& distribution, const tree_node& node, double factor) {
  for (const auto& present : node.class_weights)
    distribution[present.entry] += factor * static_cast<double>(present.weight);
}

std::vector<double> weights_of_cases(const decision_tree& tree) {
  std::vector<double> weights;
  weights.reserve(tree.nodes.size());
  for (const tree_node& node : tree.nodes) weights.push_back(weigh(node).cases);
  return weights;
}

struct estimated_class {
  std::size_t entry;
  double estimate;
};

// Whether no class can catch up with the likeliest one when estimates that sum up to `left` follow.
// The lead is far above what rounding can change.
bool is_decided(const std::vector<estimated_class>& classes, double left) {
  double best = -std::numeric_limits<double>::infinity();
  double second = best;
  for (const estimated_class& next : classes) {
    second = std::max(second, std::min(best, next.estimate));
    best = std::max(best, next.estimate);
  }
  return best - second > 2 * left + 0x1p-40;
}

// Adds up the estimates as class_probabilities does for a case that reaches this node alone, so
// that they are the same bits, until they are decided. With one unit of weight at each node, less
// than 2^-58 is left for those more than 100 levels up.
void add_estimates(std::vector<estimated_class>& classes, const decision_tree& tree,
                   const std::vector<std::size_t>& parents, const std::vector<double>& case_weights,
                   std::size_t node) {
  constexpr int most_levels = 100;
  double weight = 1;
  for (int level = 0; weight > negligible_weight && !is_decided(classes, weight); ++level) {
    const bool smooths = node != 0 && level < most_levels;
    const double factor = weight / (case_weights[node] + (smooths ? parent_weight : 0));
    for (auto& [entry, estimate] : classes)
      estimate += factor * static_cast<double>(weight_of(tree.nodes[node], entry));
    weight = smooths ? parent_weight * factor : 0;
    node = parents[node];
  }
}

// The entry with the greatest estimate; of equal ones the least.
std::size_t likeliest(const std::vector<estimated_class>& classes) {
  const auto less_likely = [](const estimated_class& a, const estimated_class& b) {
    return a.estimate != b.estimate ? a.estimate < b.estimate : a.entry > b.entry;
  };
  return std::max_element(classes.begin(), classes.end(), less_likely)->entry;
}

}  // namespace

class_probabilities::class_probabilities(const decision_tree& of_tree,
                                         const std::vector<double>& thresholds,
                                         leaf_estimate chosen)
    : tree(of_tree),
      estimate(chosen),
      parents(node_parents(of_tree)),
      case_weights(weights_of_cases(of_tree)) {
  steps.reserve(tree.nodes.size());
  branches.reserve(tree.nodes.size());
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    const bool is_continuous = !node.is_leaf() && tree.attributes[node.attribute]->is_continuous();
    steps.push_back(
        {thresholds[i], node.attribute, node.first_child, node.child_count, is_continuous});
    branches.push_back(node.branch);
  }
}

// The branches of a test ascend from 1 on, so that of a code is at most the one at its place.
std::size_t class_probabilities::child_with_code(const step& test, unsigned int code) const {
  const auto first = branches.begin() + test.first_child;
  const auto last = first + std::min(code, test.child_count);
  const auto found = last != first && last[-1] == code ? last - 1  // as where every value occurred
                                                       : std::lower_bound(first, last, code);
  return found != last && *found == code ? static_cast<std::size_t>(found - branches.begin())
                                         : none;
}

std::vector<double> class_probabilities::at_node(std::size_t node) const {
  std::vector<visit> visits{{node, 0, 1}};
  for (; node != 0; node = parents[node]) visits.push_back({parents[node], 0, 0});
  std::reverse(visits.begin(), visits.end());
  for (std::size_t place = 1; place < visits.size(); ++place) visits[place].parent = place - 1;
  return of_visits(std::move(visits));
}

// Goes from the leaves up. Each node adds its classes, and leaves to its parent the part of the
// weight that the parent's estimate has in its own. Where so many shares have been multiplied that
// the sum is 0 or not a finite number, the classes of the root are all that is known.
std::vector<double> class_probabilities::of_visits(std::vector<visit> visits) const {
  double greatest = 0;
  for (const visit& reached : visits) greatest = std::max(greatest, reached.weight);
  std::vector<double> distribution(tree.class_count(), 0.0);
  for (std::size_t place = visits.size(); place-- > 0;) {
    const auto& [node, parent, weight] = visits[place];
    if (weight == 0) continue;
    const bool smooths = estimate == leaf_estimate::smoothed && node != 0;
    const double factor = weight / (case_weights[node] + (smooths ? parent_weight : 0));
    add_classes(distribution, tree.nodes[node], factor);
    const double left = smooths ? parent_weight * factor : 0;
    if (left > negligible_weight * greatest) visits[parent].weight += left;
  }
  double sum = std::accumulate(distribution.begin(), distribution.end(), 0.0);
  if (!(sum > 0) || !std::isfinite(sum)) {
    std::fill(distribution.begin(), distribution.end(), 0.0);
    add_classes(distribution, tree.nodes.front(), 1 / case_weights.front());
    sum = std::accumulate(distribution.begin(), distribution.end(), 0.0);
  }
  for (double& probability : distribution) probability /= sum;
  return distribution;
}

// It is enough to compare the classes that occur at a node with the one predicted at its parent.
// The estimate of a class that does not occur is that at the parent, multiplied by a factor that is
// the same for all of them, so they keep their order. The parent's class was the first among them;
// if it occurs, its weight puts it only further ahead.
std::vector<std::size_t> predicted_classes(const decision_tree& tree) {
  const std::vector<std::size_t> parents = node_parents(tree);
  const std::vector<double> case_weights = weights_of_cases(tree);
  std::vector<std::size_t> predicted{heaviest_class(tree.nodes.front())};
  std::vector<estimated_class> candidates;
  for (std::size_t node = 1; node < tree.nodes.size(); ++node) {
    candidates.clear();
    for (const auto& present : tree.nodes[node].class_weights)
      candidates.push_back({present.entry, 0});
    const std::size_t of_parent = predicted[parents[node]];
    if (weight_of(tree.nodes[node], of_parent) == 0) candidates.push_back({of_parent, 0});
    add_estimates(candidates, tree, parents, case_weights, node);
    predicted.push_back(likeliest(candidates));
  }
  return predicted;
}

std::size_t likeliest_class(const std::vector<double>& distribution) {
  return static_cast<std::size_t>(std::max_element(distribution.begin(), distribution.end()) -
                                  distribution.begin());
}

}  // namespace arbor::tree
