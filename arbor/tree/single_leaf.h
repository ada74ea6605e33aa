// Why a tree has no test.
#ifndef ARBOR_TREE_SINGLE_LEAF_H
#define ARBOR_TREE_SINGLE_LEAF_H

#include "arbor/tree/grower.h"

namespace arbor::tree {

enum class single_leaf_reason {
  one_class,  // all training cases are of the same class
  no_depth,   // the greatest depth is 0
  too_light,  // the cases weigh less than two branches have to
  no_split,   // no attribute has a split with a judged gain above 0
  pruned      // branches are not expected to make fewer errors
};

// The first of the reasons for which grow_tree makes a single leaf of these cases with these
// options; it must have done so.
single_leaf_reason why_single_leaf(const table& training, const impls::w_sequence& cases,
                                   const grow_options& options);

}  // namespace arbor::tree

#endif
