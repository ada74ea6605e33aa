// Grows a tree on the rows of all processes: the same tree, to the bit, as grow_tree grows on one
// machine that has all rows.
//
// Large nodes are rated and divided by all processes together. A node that has no more cases than a
// process's share of the rows moves to one process, which grows all below it by itself. Both ideas
// are those of B. Panda, J. Herbach, S. Basu and R. Bayardo, "PLANET: massively parallel learning
// of tree ensembles with MapReduce", VLDB 2009. docs/processes.md says what is sent.
#ifndef ARBOR_PROCESSES_SHARED_GROWTH_H
#define ARBOR_PROCESSES_SHARED_GROWTH_H

#include "arbor/processes/process_group.h"
#include "arbor/tree/grower.h"

namespace arbor::tree {

// Collective; returns the tree in every process. `training` has the rows of this process, `cases`
// are some of them, and of all processes together at least one. The options mean what they mean for
// grow_tree; `threads` are those of each process, and `progress` is called by this one.
decision_tree grow_shared_tree(process_group& group, const table& training,
                               const impls::w_sequence& cases, const grow_options& options);

}  // namespace arbor::tree

#endif
