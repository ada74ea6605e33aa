// Grows a decision tree on the cases of a table.
//
//   grow_options options;
//   options.min_weight = 5;
//   decision_tree tree = grow_tree(golf, golf.cases, options);
//
// Top-down induction by gain ratio: J. R. Quinlan, "Induction of decision trees", Machine Learning
// 1 (1986). A node's test is the attribute with the best gain ratio among those whose gain is at
// least the average of all that split.
#ifndef ARBOR_TREE_GROWER_H
#define ARBOR_TREE_GROWER_H

#include <functional>
#include <limits>

#include "arbor/table/table.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

struct grow_options {
  float min_weight = 2;  // the least weight of a branch
  unsigned int max_depth =
      std::numeric_limits<unsigned int>::max();  // of tests one below the other
  bool prune = true;                             // see pruning.h
  float confidence = 0.25F;                      // of pruning
  unsigned int threads =
      0;  // that work side by side, 0 for one on each core; the tree is the same for any number
  // Told now and then which share of the cases has come to a leaf; by any of the threads, one at a
  // time.
  std::function<void(double settled)> progress;
};

// Grows a tree on `cases`, rows of `training` with the weights that they have there, of which there
// is at least one. A node becomes a leaf when its cases are of one class, weigh less than twice
// `min_weight`, lie `max_depth` deep, or have no split. Cases whose value is unknown go down every
// branch, until less than a thousandth of them is left. The same cases in the same order always
// give the same tree.
//
// What a thread throws, std::bad_alloc for one, is thrown on here once all threads have ended.
decision_tree grow_tree(const table& training, const impls::w_sequence& cases,
                        const grow_options& options);

}  // namespace arbor::tree

#endif
