// Cuts back a tree where its branches promise no fewer errors than a leaf would.
//
// Pessimistic error pruning: J. R. Quinlan, "Simplifying decision trees", International Journal of Man-Machine Studies
// 27 (1987), 221-234. What a leaf does wrong among new cases is taken to be the upper limit of a confidence interval
// around what it does wrong among its training cases.
#ifndef ARBOR_TREE_PRUNING_H
#define ARBOR_TREE_PRUNING_H

#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// The share of errors, 0 to 1, that is exceeded with no more than the probability `confidence` (above 0, up to 0.5)
// when `errors` have been seen in `cases` (above 0): the upper limit of the score interval of E. B. Wilson, Journal of
// the American Statistical Association 22 (1927), 209-212.
double pessimistic_error_rate(double errors, double cases, double confidence);

// Makes leaves of the tests whose leaves promise at least as many errors as they would as a leaf themselves. The nodes
// below them stay where they are, unreachable.
void prune(std::vector<tree_node>& nodes, float confidence);

}  // namespace arbor::tree

#endif
