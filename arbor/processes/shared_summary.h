// A summary of the cases of all processes.
#ifndef ARBOR_PROCESSES_SHARED_SUMMARY_H
#define ARBOR_PROCESSES_SHARED_SUMMARY_H

#include "arbor/processes/process_group.h"
#include "arbor/table/table.h"

namespace arbor::tree {

// Collective. What summary_of says of the cases of all processes, one after the other.
case_summary shared_summary(process_group& group, const table& summed,
                            const impls::w_sequence& own_cases);

}  // namespace arbor::tree

#endif
