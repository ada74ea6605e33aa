// Grows a decision tree on the cases of a table.
//
//   grow_options options;
//   options.min_weight = 5;
//   decision_tree tree = grow_tree(golf, options);
//
// Top-down induction by gain ratio: J. R. Quinlan, "Induction of decision trees", Machine Learning
// 1 (1986). test_choice.h describes which attribute a node tests, pruning.h which tests are kept.
#ifndef ARBOR_TREE_GROWER_H
#define ARBOR_TREE_GROWER_H

#include <functional>
#include <limits>

#include "arbor/table/table.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

struct grow_options {
  // The least weight of two branches of a discrete split, or of both sides of a threshold.
  float min_weight = 2;
  // The most tests on the way from the root to a leaf.
  unsigned int max_depth = std::numeric_limits<unsigned int>::max();
  bool prune = true;        // see pruning.h
  float confidence = 0.1F;  // of pruning
  // The number of threads, 0 for one on each core. The tree is the same for any number.
  unsigned int threads = 0;
  // Called from time to time with the share (0 to 1) of the cases' weight that is in leaves, before
  // each column of a large node at least; by any of the threads, one at a time. What it throws ends
  // the work. May be empty.
  std::function<void(double settled)> progress;
};

// Grows a tree on `cases`, at least one: rows of `training` with the weights that they have there,
// which are above 0.
// A node becomes a leaf when its cases are of one class, weigh less than twice `min_weight`, are at
// `max_depth`, or have no split. Cases whose value is unknown go down every branch, until less than
// a thousandth of them is left. The same cases in the same order always give the same tree.
//
// Anything that a thread throws, such as std::bad_alloc, is rethrown once all threads have ended.
decision_tree grow_tree(const table& training, const impls::w_sequence& cases,
                        const grow_options& options);

// The same on all cases of the table.
inline decision_tree grow_tree(const table& training, const grow_options& options = {}) {
  return grow_tree(training, training.cases, options);
}

}  // namespace arbor::tree

#endif
