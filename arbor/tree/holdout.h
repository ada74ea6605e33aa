// Keeps some cases back, to try a tree on cases that it was not grown on.
#ifndef ARBOR_TREE_HOLDOUT_H
#define ARBOR_TREE_HOLDOUT_H

#include <cstdint>

#include "arbor/model/w_sequence.h"

namespace arbor::tree {

struct divided_cases {
  impls::w_sequence training;
  impls::w_sequence held_back;
};

// Keeps back `share` (0 to 1) of the cases, to the nearest whole number, chosen at random; the
// others, and those kept back, stay in their order. A seed always gives the same choice among as
// many cases, on every machine.
divided_cases hold_out(const impls::w_sequence& cases, double share, std::uint64_t seed);

}  // namespace arbor::tree

#endif
