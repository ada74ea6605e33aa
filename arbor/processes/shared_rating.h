// Rates the attributes of a table on cases that are shared out among processes.
//
// The class weights for each code of an attribute (the AVC-sets of J. Gehrke, R. Ramakrishnan and
// V. Ganti, "RainForest", VLDB 1998) are summed up over the processes at one of them, which rates
// the attribute. The cases of an attribute with too many codes for that are sent there instead, as
// in J. Shafer, R. Agrawal and M. Mehta, "SPRINT", VLDB 1996. Either way the rating is what one
// machine would have found, to the bit.
#ifndef ARBOR_PROCESSES_SHARED_RATING_H
#define ARBOR_PROCESSES_SHARED_RATING_H

#include <cstddef>
#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/processes/shared_cases.h"
#include "arbor/tree/growing/judged_split.h"
#include "arbor/tree/rating.h"

namespace arbor::tree {

// All functions are collective and have the same results everywhere.

// Narrows the ranges of these columns to the codes that occur among the cases.
void narrow_ranges(process_group& group, shared_cases& node,
                   const std::vector<std::size_t>& columns);

// Rates these columns, given by their indices in the table.
//
// In a process at most 64 MiB of tables are on their way, or the table of one attribute. Of
// attributes that are rated by their cases, as many as there are processes are on their way at a
// time; see rating_by_cases.h. Throws agreed_failure if 4294967296 cases or more would have to come
// to one process.
std::vector<judged_split> rate_shared(process_group& group, const shared_cases& node,
                                      const std::vector<std::size_t>& columns,
                                      const rated_node& known);

// The same as rate_attributes for the rows of all processes. `rated` has the rows of this one, and
// `cases` some of them.
table_rating rate_shared_attributes(process_group& group, const table& rated,
                                    const impls::w_sequence& cases, float min_weight);

}  // namespace arbor::tree

#endif
