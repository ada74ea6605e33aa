// Divides cases into training cases and held-back cases, which are kept to evaluate a tree.
//
//   const divided_cases cases = hold_out(golf.cases, 0.3, 1);
#ifndef ARBOR_TREE_VALIDATION_HOLDOUT_H
#define ARBOR_TREE_VALIDATION_HOLDOUT_H

#include <cstddef>
#include <cstdint>

#include "arbor/model/w_sequence.h"

namespace arbor::tree {

struct divided_cases {
  impls::w_sequence training;
  impls::w_sequence held_back;
};

// Holds back `share` (0 to 1) of the cases, rounded to a whole number of them and chosen at random.
// Both parts keep the order of the cases. The choice depends on the seed and the number of cases
// alone and is the same on every machine.
divided_cases hold_out(const impls::w_sequence& cases, double share, std::uint64_t seed);

// What that does with some of the cases, if there are so many before and behind them. Takes time in
// proportion to those before, too.
divided_cases hold_out(const impls::w_sequence& cases, double share, std::uint64_t seed,
                       std::size_t before, std::size_t behind);

}  // namespace arbor::tree

#endif
