#include "arbor/tree/growing/growing_node.h"

namespace arbor::tree {

node_summary::node_summary(std::size_t case_count, const std::vector<double>& sums,
                           unsigned int tests_above)
    : cases(case_count),
      weight(static_cast<float>(sums[0])),
      class_weights(present_classes(std::vector<float>(sums.begin() + 1, sums.end()))),
      depth(tests_above) {}

bool node_summary::may_split(const grow_options& options) const {
  return class_weights.size() > 1 && weight >= 2 * options.min_weight && depth < options.max_depth;
}

}  // namespace arbor::tree
