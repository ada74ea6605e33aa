// Classifies the rows of a table's files in several processes.
#ifndef ARBOR_PROCESSES_SHARED_CLASSIFICATION_H
#define ARBOR_PROCESSES_SHARED_CLASSIFICATION_H

#include <ostream>
#include <string>
#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/tree/table_classification.h"

namespace arbor::tree {

// Collective. Returns in each process what classify_table returns for all rows; what that throws is
// thrown in each as agreed_failure. The first process writes all rows to `rows`. In the others
// `rows` only says whether rows are written: they keep their texts in memory until it is their
// turn.
classification_result classify_shared_table(process_group& group,
                                            const std::vector<std::string>& paths,
                                            const decision_tree& tree,
                                            const classification_options& options,
                                            std::ostream* rows);

}  // namespace arbor::tree

#endif
