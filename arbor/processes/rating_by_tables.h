// Rates attributes by their class weights for each code, added up over the processes.
#ifndef ARBOR_PROCESSES_RATING_BY_TABLES_H
#define ARBOR_PROCESSES_RATING_BY_TABLES_H

#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/processes/shared_attribute.h"
#include "arbor/processes/shared_cases.h"

namespace arbor::tree {

// Collective. Returns the ratings that this process has made; each attribute is rated by one.
//
// Counts are added up in any order. Float sums go from process to process; while a process adds to
// the tables of some attributes, the one before it is at those of the next.
std::vector<shared_result> rate_by_tables(process_group& group, const shared_cases& node,
                                          const std::vector<shared_attribute>& attributes,
                                          const rated_node& known);

}  // namespace arbor::tree

#endif
