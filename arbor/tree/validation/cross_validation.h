// Estimates how well trees grown on a table predict cases that they have not seen.
//
//   validation_options options;
//   options.repeats = 3;
//   const validation result = cross_validate(golf, options);
//   use(result.quality.accuracy(), result.folds.front().size.leaves);
//
// Stratified cross-validation: the cases are divided into folds that have each class in nearly the
// same proportion. For each fold, a tree grown on the other folds predicts the cases of this one.
// R. Kohavi, "A study of cross-validation and bootstrap for accuracy estimation and model
// selection", IJCAI (1995), 1137-1143.
#ifndef ARBOR_TREE_VALIDATION_CROSS_VALIDATION_H
#define ARBOR_TREE_VALIDATION_CROSS_VALIDATION_H

#include <cstdint>
#include <optional>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/tree/decision_tree.h"
#include "arbor/tree/evaluation.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/validation/permutation_importance.h"

namespace arbor::tree {

struct validation_options {
  unsigned int folds = 10;   // from 2 to the number of cases
  unsigned int repeats = 1;  // how many times the cases are divided into folds, at least 1
  std::uint32_t seed = 1;    // chooses how they are divided
  // How to grow the trees. The threads validate folds side by side, each tree is grown by one. The
  // progress is that of the whole validation.
  grow_options grow;
  // Whether each tree is grown with the minimum weight and confidence that are chosen for its
  // training cases; see tuning.h.
  bool tune = false;
  bool importance = false;  // whether to find that of the attributes
};

// What an attribute contributes to the predictions; see permutation_importance.h.
struct validated_attribute {
  std::size_t trees = 0;  // how many test it
  permutation_loss loss;
};

// What the tree predicted that was grown without the cases of one fold.
struct fold_result {
  unsigned int repeat = 0;  // from 1
  unsigned int fold = 0;    // from 1
  evaluation quality;       // of the fold's cases
  tree_size size;
  float min_weight = 0;                         // with which the tree was grown
  std::optional<float> confidence;              // of its pruning, if it was pruned
  std::vector<validated_attribute> attributes;  // by column of the table, if it was asked for
};

struct validation {
  std::vector<fold_result> folds;  // all folds of the first repeat, then of the next
  // Of all cases: the mean over the repeats. Repeats predict the same cases again, so the standard
  // error is that of one repeat's number of cases.
  evaluation quality;
  // By column of the table, if it was asked for: the sum of the trees and the mean of the losses of
  // all cases.
  std::vector<validated_attribute> attributes;
};

// Validates with all cases of a table. The result depends on the table and the options alone; it is
// the same for any number of threads. Anything that a thread throws is rethrown.
validation cross_validate(const table& rows, const validation_options& options);

// The means over all folds.
double mean_leaves(const validation& result);
double mean_depth(const validation& result);

}  // namespace arbor::tree

#endif
