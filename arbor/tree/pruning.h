// Cuts back a tree where its branches promise no fewer errors than a leaf would.
//
// Pessimistic error pruning, the idea of J. R. Quinlan, "Simplifying decision trees", International
// Journal of Man-Machine Studies 27 (1987), 221-234: what is seen in the training cases is too good
// to be true, the more so the fewer they are. Here the share of errors that a leaf promises is the
// upper confidence limit of binomial_limit.h.
#ifndef ARBOR_TREE_PRUNING_H
#define ARBOR_TREE_PRUNING_H

#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Makes leaves of the tests whose leaves promise at least as many errors as they would as a leaf
// themselves. The nodes below them stay where they are, unreachable. `confidence` is above 0 and at
// most 0.5; the less it is, the more is cut.
void prune(std::vector<tree_node>& nodes, float confidence);

}  // namespace arbor::tree

#endif
