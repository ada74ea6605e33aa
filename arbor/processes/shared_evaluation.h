// Classifies the cases of all processes, and compares with their classes.
#ifndef ARBOR_PROCESSES_SHARED_EVALUATION_H
#define ARBOR_PROCESSES_SHARED_EVALUATION_H

#include "arbor/processes/process_group.h"
#include "arbor/table/table.h"
#include "arbor/tree/decision_tree.h"
#include "arbor/tree/evaluation.h"

namespace arbor::tree {

// Collective. What classify_cases returns for the cases of all processes, one after the other. Each
// process has the tree, whose class column is the table's.
evaluation classify_shared_cases(process_group& group, const decision_tree& tree, const table& rows,
                                 const impls::w_sequence& own_cases);

}  // namespace arbor::tree

#endif
