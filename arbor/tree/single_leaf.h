// Why a tree has no test.
#ifndef ARBOR_TREE_SINGLE_LEAF_H
#define ARBOR_TREE_SINGLE_LEAF_H

#include <functional>

#include "arbor/tree/grower.h"

namespace arbor::tree {

enum class single_leaf_reason {
  one_class,  // all training cases are of the same class
  no_depth,   // the greatest depth is 0
  too_light,  // the cases weigh less than two branches have to
  no_split,   // no attribute has a split with a judged gain above 0
  pruned      // branches are not expected to make fewer errors
};

// The first of the reasons for which `grow` makes a single leaf of these cases with these options;
// it must have done so. It grows a tree on the cases, as grow_tree does.
single_leaf_reason why_single_leaf(const case_summary& cases, const grow_options& options,
                                   const std::function<decision_tree(const grow_options&)>& grow);

}  // namespace arbor::tree

#endif
