// Moves the cases of nodes, each to one process, where they become those of a local node.
//
//   std::vector<moving_node> nodes = ...;     // the same ones in each process, with its own cases
//   for (node_cases& cases : moved_here(group, training, nodes)) ...
#ifndef ARBOR_PROCESSES_MOVED_CASES_H
#define ARBOR_PROCESSES_MOVED_CASES_H

#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/processes/shared_cases.h"

namespace arbor::tree {

struct moving_node {
  shared_cases cases;  // what is known of all of them need not be set
  unsigned int to;     // the process
};

// Collective. Returns the nodes that have moved to this process, in their order, with their cases
// in the order of one machine. Codes, classes and weights are sent, each code in as few bytes as
// the domain needs. `training` is the table that the domains are of; it must outlive the result.
std::vector<node_cases> moved_here(process_group& group, const table& training,
                                   std::vector<moving_node> nodes);

}  // namespace arbor::tree

#endif
