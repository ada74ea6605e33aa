// Pruning: tests that promise no fewer errors than a leaf in their place become leaves.
//
// Pessimistic error pruning, the idea of J. R. Quinlan, "Simplifying decision trees", International
// Journal of Man-Machine Studies 27 (1987), 221-234: errors on the training cases are too
// optimistic, the more so the fewer cases there are. A leaf is therefore expected to make errors on
// the upper confidence limit of their share.
#ifndef ARBOR_TREE_PRUNING_H
#define ARBOR_TREE_PRUNING_H

#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Turns tests into leaves where the leaves below promise at least as many errors. The nodes below
// such a test stay in the sequence, unreachable. `confidence` is above 0 and at most 0.5; the lower
// it is, the more tests are cut. Children must stand behind their parents.
void prune(std::vector<tree_node>& nodes, float confidence);

// The upper confidence limit of a share of errors: with this share (0 to 1), no more than `errors`
// among `cases` occur with the probability `confidence` (between 0 and 1). See C. J. Clopper and
// E. S. Pearson, Biometrika 26 (1934), 404-413. Both numbers may be fractions: the sum over the
// binomial distribution is taken as the incomplete beta function, which equals it for whole
// numbers. The limit is 1 if all cases are errors.
double binomial_upper_limit(double errors, double cases, double confidence);

}  // namespace arbor::tree

#endif
