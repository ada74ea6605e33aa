// What the predictions of a tree lose when an attribute tells nothing about the cases.
//
//   std::vector<permutation_loss> losses =
//       permutation_losses(tree, golf, held_back, quality, random);
//
// The attribute's values are permuted among the cases, which keeps their distribution and destroys
// what they have to do with the class: L. Breiman, "Random forests", Machine Learning 45 (2001),
// 5-32, section 10.
#ifndef ARBOR_TREE_VALIDATION_PERMUTATION_IMPORTANCE_H
#define ARBOR_TREE_VALIDATION_PERMUTATION_IMPORTANCE_H

#include <random>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/tree/decision_tree.h"
#include "arbor/tree/evaluation.h"

namespace arbor::tree {

// Either may be negative, by chance.
struct permutation_loss {
  double log_loss = 0;  // how many bits the log-loss grows by
  double accuracy = 0;  // how much the accuracy falls
};

// The loss for each attribute of a tree, in the order of tree.attributes. `cases` are rows of a
// table that has the tree's class column and attributes, held back from growing the tree, and
// `quality` is their evaluation.
std::vector<permutation_loss> permutation_losses(const decision_tree& tree, const table& rows,
                                                 const impls::w_sequence& cases,
                                                 const evaluation& quality,
                                                 std::mt19937_64& random);

}  // namespace arbor::tree

#endif
