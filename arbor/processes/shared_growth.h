// STAND-IN, to be replaced: each process grows the tree on all cases.
#ifndef ARBOR_PROCESSES_SHARED_GROWTH_H
#define ARBOR_PROCESSES_SHARED_GROWTH_H

#include "arbor/processes/process_group.h"
#include "arbor/tree/grower.h"

namespace arbor::tree {

inline decision_tree grow_shared_tree(process_group& group, const table& training,
                                      const impls::w_sequence& cases, const grow_options& options) {
  group.enter("level 0");
  return grow_tree(training, group.gathered(cases), options);
}

}  // namespace arbor::tree

#endif
