// Rates attributes by all cases, each at a process that these are sent to.
#ifndef ARBOR_PROCESSES_RATING_BY_CASES_H
#define ARBOR_PROCESSES_RATING_BY_CASES_H

#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/processes/shared_attribute.h"
#include "arbor/processes/shared_cases.h"

namespace arbor::tree {

// Collective. Returns the ratings that this process has made; each attribute is rated by one, as
// many at a time as there are processes. A case takes 8 bytes on its way, or 12 if weights are
// uneven: code, class and weight. A process holds these of all cases for the attribute that it
// rates, and of its own cases for all attributes that are on their way. Throws agreed_failure for
// 4294967296 cases or more.
std::vector<shared_result> rate_by_cases(process_group& group, const shared_cases& node,
                                         const std::vector<shared_attribute>& attributes,
                                         const rated_node& known);

}  // namespace arbor::tree

#endif
