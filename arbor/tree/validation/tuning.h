// Chooses the minimum weight and the confidence of pruning by cross-validation.
//
//   std::mt19937_64 random(1);
//   const grow_options best = tuned_options(golf, golf.cases, {}, random);
//   decision_tree tree = grow_tree(golf, golf.cases, best);
//
// Each pair of the grid below is tried in ten folds. The pair with the least sum of the share of
// errors and the Brier score wins, of equal ones that with the smaller trees. On small tables the
// share of errors alone is too coarse to tell the pairs apart. The Brier score alone, like the
// log-loss, prefers cautious trees that make more errors.
#ifndef ARBOR_TREE_VALIDATION_TUNING_H
#define ARBOR_TREE_VALIDATION_TUNING_H

#include <array>
#include <random>

#include "arbor/table/table.h"
#include "arbor/tree/grower.h"

namespace arbor::tree {

constexpr std::array<float, 5> tuned_min_weights{1, 2, 5, 10, 20};
constexpr std::array<float, 4> tuned_confidences{0.05F, 0.1F, 0.25F, 0.5F};

// The options with the chosen minimum weight and confidence, and with pruning. `cases` are rows of
// `training` with their weights; of a single one, nothing can be learned, and the options are
// returned as they are. The progress is that of the choice. The same cases, options and numbers
// give the same choice for any number of threads.
grow_options tuned_options(const table& training, const impls::w_sequence& cases,
                           const grow_options& options, std::mt19937_64& random);

}  // namespace arbor::tree

#endif
