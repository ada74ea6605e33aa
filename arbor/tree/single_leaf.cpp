#include "arbor/tree/single_leaf.h"

namespace arbor::tree {

single_leaf_reason why_single_leaf(const case_summary& cases, const grow_options& options,
                                   const std::function<decision_tree(const grow_options&)>& grow) {
  if (present_classes(cases.class_weights).size() < 2) return single_leaf_reason::one_class;
  if (options.max_depth == 0) return single_leaf_reason::no_depth;
  if (cases.weight < 2 * options.min_weight) return single_leaf_reason::too_light;
  grow_options one_test = options;
  one_test.max_depth = 1;
  one_test.prune = false;
  one_test.progress = nullptr;
  const bool has_split = !grow(one_test).nodes.front().is_leaf();
  return has_split ? single_leaf_reason::pruned : single_leaf_reason::no_split;
}

}  // namespace arbor::tree
