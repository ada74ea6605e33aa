// Prunes a grown tree: a test becomes a leaf if it is not expected to make fewer errors than that.
//
// Pessimistic error pruning, the idea of J. R. Quinlan, "Simplifying decision trees", International
// Journal of Man-Machine Studies 27 (1987), 221-234: the share of errors on the training cases is
// too optimistic, most of all where there are few cases. The expected share of errors of a leaf is
// therefore the upper limit of a confidence interval.
#ifndef ARBOR_TREE_PRUNING_H
#define ARBOR_TREE_PRUNING_H

#include <cstddef>
#include <map>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Turns a test into a leaf where the leaves below it are expected to make at least as many errors.
// The nodes below such a test stay in the sequence, unreachable. `confidence` is above 0 and at
// most 0.5; a lower one prunes more. The first node is the root.
//
// Returns the number of errors to expect of the tree. Whether a test is pruned depends on what is
// below it alone, so parts of a tree can be pruned before they are put together: `pruned_before`
// has what this has returned for the nodes that are now their roots, by node.
double prune(std::vector<tree_node>& nodes, float confidence,
             const std::map<std::size_t, double>& pruned_before = {});

// The upper confidence limit of a share of errors: with this share (0 to 1), no more than `errors`
// among `cases` occur with the probability `confidence` (between 0 and 1). See C. J. Clopper and
// E. S. Pearson, Biometrika 26 (1934), 404-413. Both numbers may be fractions: the sum over the
// binomial distribution is taken as the incomplete beta function, which equals it for whole
// numbers. The limit is 1 if all cases are errors.
double binomial_upper_limit(double errors, double cases, double confidence);

}  // namespace arbor::tree

#endif
