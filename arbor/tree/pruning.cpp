#include "arbor/tree/pruning.h"

#include "arbor/tree/binomial_limit.h"

namespace arbor::tree {

void prune(std::vector<tree_node>& nodes, float confidence) {
  std::vector<double> promised_errors(nodes.size(), 0.0);
  // Children stand behind their parents, so that backwards every subtree is done before it is
  // judged.
  for (std::size_t i = nodes.size(); i-- > 0;) {
    tree_node& node = nodes[i];
    const leaf_weight leaf = weigh(node);
    const double as_leaf =
        leaf.cases * binomial_upper_limit(leaf.errors, leaf.cases, static_cast<double>(confidence));
    double as_test = 0;
    double below = 0;
    for (std::size_t child = node.first_child; child < node.first_child + node.child_count;
         ++child) {
      as_test += promised_errors[child];
      below += weigh(nodes[child]).cases;
    }
    // The shares of unknown cases may add up to more than one; their errors are to count once all
    // the same.
    if (below > 0) as_test *= leaf.cases / below;
    if (!node.is_leaf() && as_leaf <= as_test) {
      node.attribute = tree_node::no_attribute;
      node.child_count = 0;
      node.split.reset();
    }
    promised_errors[i] = node.is_leaf() ? as_leaf : as_test;
  }
}

}  // namespace arbor::tree
