// STAND-IN, to be replaced: each process grows the tree on all cases.
#ifndef ARBOR_PROCESSES_SHARED_GROWTH_H
#define ARBOR_PROCESSES_SHARED_GROWTH_H

#include <utility>

#include "arbor/processes/process_group.h"
#include "arbor/tree/grower.h"

namespace arbor::tree {

inline decision_tree grow_shared_tree(process_group& group, const table& training,
                                      const impls::w_sequence& cases, const grow_options& options) {
  group.enter("level 0");
  auto& whole = const_cast<table&>(training);
  const impls::w_sequence own = std::exchange(whole.cases, group.gathered(training.cases));
  decision_tree result = grow_tree(training, group.gathered(cases), options);
  whole.cases = own;
  return result;
}

}  // namespace arbor::tree

#endif
