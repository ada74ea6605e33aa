#include "arbor/tree/pruning.h"

#include <cmath>

namespace arbor::tree {

namespace {

// The deviate that a standard normal variable exceeds with this probability, by halving.
double upper_quantile(double probability) {
  double low = 0;
  double high = 40;
  for (int i = 0; i < 100; ++i) {
    const double middle = (low + high) / 2;
    (std::erfc(middle / std::sqrt(2.0)) / 2 > probability ? low : high) = middle;
  }
  return low;
}

double score_limit(double errors, double cases, double deviate) {
  const double rate = errors / cases;
  const double spread = deviate * deviate / cases;
  return (rate + spread / 2 + std::sqrt(spread * (rate - rate * rate + spread / 4))) / (1 + spread);
}

}  // namespace

double pessimistic_error_rate(double errors, double cases, double confidence) {
  return score_limit(errors, cases, upper_quantile(confidence));
}

void prune(std::vector<tree_node>& nodes, float confidence) {
  const double deviate = upper_quantile(static_cast<double>(confidence));
  std::vector<double> promised(nodes.size(), 0.0);
  // Children stand behind their parents, so that backwards every subtree is done before it is judged.
  for (std::size_t i = nodes.size(); i-- > 0;) {
    tree_node& node = nodes[i];
    const leaf_weight leaf = weigh(node);
    const double as_leaf = leaf.cases * score_limit(leaf.errors, leaf.cases, deviate);
    double as_test = 0;
    for (unsigned int child = 0; child < node.child_count; ++child) as_test += promised[node.first_child + child];
    if (!node.is_leaf() && as_leaf <= as_test) {
      node.attribute = tree_node::no_attribute;
      node.child_count = 0;
      node.split.reset();
    }
    promised[i] = node.is_leaf() ? as_leaf : as_test;
  }
}

}  // namespace arbor::tree
