// A tree that is grown only to be evaluated, and leaves no memory behind.
//
//   const trial_tree trial(grow_tree(golf, cases.training, options));
//   const evaluation quality = classify_cases(trial.tree, golf, cases.held_back);
#ifndef ARBOR_TREE_VALIDATION_TRIAL_TREE_H
#define ARBOR_TREE_VALIDATION_TRIAL_TREE_H

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Every tree has copies of its columns' domains, and a domain that has been asked something keeps
// its values for good. Tuning in a cross-validation grows thousands of trees, whose copies would
// fill the memory. So the values are released with the tree.
class trial_tree {
 public:
  explicit trial_tree(decision_tree grown);
  trial_tree(const trial_tree&) = delete;
  trial_tree& operator=(const trial_tree&) = delete;
  ~trial_tree();

  const decision_tree tree;
};

}  // namespace arbor::tree

#endif
