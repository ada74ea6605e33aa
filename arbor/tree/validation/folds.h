// Divides cases into the folds of a cross-validation.
//
//   const auto folds = deal_folds(golf.class_column(), golf.cases, 10, random);
//   const divided_cases cases = hold_out_fold(golf.cases, folds, 0);
#ifndef ARBOR_TREE_VALIDATION_FOLDS_H
#define ARBOR_TREE_VALIDATION_FOLDS_H

#include <random>
#include <vector>

#include "arbor/model/column.h"
#include "arbor/tree/validation/holdout.h"

namespace arbor::tree {

// The fold of each case, from 0 to folds - 1. Each class is dealt at random and as evenly as
// possible, and the number of cases differs between folds by one at most.
std::vector<unsigned int> deal_folds(const impls::column& classes, const impls::w_sequence& cases,
                                     unsigned int folds, std::mt19937_64& random);

// Holds back the cases of one fold. Both parts keep the order of the cases.
divided_cases hold_out_fold(const impls::w_sequence& cases, const std::vector<unsigned int>& folds,
                            unsigned int held_back);

}  // namespace arbor::tree

#endif
