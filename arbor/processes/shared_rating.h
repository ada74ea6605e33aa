// STAND-IN, to be replaced: each process rates all cases.
#ifndef ARBOR_PROCESSES_SHARED_RATING_H
#define ARBOR_PROCESSES_SHARED_RATING_H

#include "arbor/processes/process_group.h"
#include "arbor/tree/rating.h"

namespace arbor::tree {

inline table_rating rate_shared_attributes(process_group& group, const table& rated,
                                           const impls::w_sequence& cases, float min_weight) {
  return rate_attributes(rated, group.gathered(cases), min_weight);
}

}  // namespace arbor::tree

#endif
