// Cuts back a tree where its branches promise no fewer errors than a leaf would.
//
// Pessimistic error pruning: J. R. Quinlan, "Simplifying decision trees", International Journal of Man-Machine Studies
// 27 (1987), 221-234. The share of errors that a leaf promises is the upper confidence limit that its training cases
// leave; so a leaf of few cases promises little.
#ifndef ARBOR_TREE_PRUNING_H
#define ARBOR_TREE_PRUNING_H

#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Makes leaves of the tests whose leaves promise at least as many errors as they would as a leaf themselves. The nodes
// below them stay where they are, unreachable. `confidence` is above 0 and at most 0.5; the less it is, the more is cut.
void prune(std::vector<tree_node>& nodes, float confidence);

}  // namespace arbor::tree

#endif
