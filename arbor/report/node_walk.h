// Visits the nodes of a tree in the order in which a reader meets them.
#ifndef ARBOR_REPORT_NODE_WALK_H
#define ARBOR_REPORT_NODE_WALK_H

#include <cstddef>
#include <utility>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Calls visit(index, depth) for every node with at most `most_depth` tests above it: each node
// before its children, children in the order of their branches.
template <class Visit>
void for_each_node(const decision_tree& tree, std::size_t most_depth, Visit visit) {
  std::vector<std::pair<std::size_t, std::size_t>> open{{0, 0}};
  while (!open.empty()) {
    const auto [index, depth] = open.back();
    open.pop_back();
    visit(index, depth);
    const tree_node& node = tree.nodes[index];
    if (depth == most_depth) continue;
    for (unsigned int i = node.child_count; i-- > 0;)
      open.emplace_back(node.first_child + i, depth + 1);
  }
}

}  // namespace arbor::tree

#endif
