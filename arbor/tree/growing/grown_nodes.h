// The nodes of a growing tree or of a part of one, and how they become a decision_tree.
#ifndef ARBOR_TREE_GROWING_GROWN_NODES_H
#define ARBOR_TREE_GROWING_GROWN_NODES_H

#include <cstddef>
#include <functional>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/tree/decision_tree.h"
#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

struct grown_nodes {
  // The root first, every child after its parent. While the tree grows the attributes are indices
  // of the table's columns, and thresholds have no texts.
  std::vector<tree_node> nodes = std::vector<tree_node>(1);
  // By node: the cut of a continuous test.
  std::vector<cut> cuts = std::vector<cut>(1);

  // Appends a node for a branch of the last test.
  void add_child(unsigned int branch, float share);

  // Puts another part, grown from one node's cases, in the place of that node.
  void graft(std::size_t node, grown_nodes part);
};

// The nodes that can be reached from the root, renumbered breadth-first; pruning leaves others
// behind.
grown_nodes reachable_nodes(grown_nodes grown);

// By code of a column of the table, given by its index: whether training cases have it.
using occurring_codes = std::function<std::vector<bool>(std::size_t column)>;

// Makes the tree of the reachable nodes, with the texts of their thresholds and the columns that
// some node tests. Only values of training cases become thresholds, so that held-back cases do not
// shape the tree that they evaluate. `occurring` is null if all rows are training cases; it is
// asked once for a column.
decision_tree to_tree(const table& training, grown_nodes grown, const occurring_codes& occurring);

// The codes that occur among some cases of a table, both of which must outlive the result; null if
// they are all cases of the table.
occurring_codes codes_among(const table& training, const impls::w_sequence& cases);

}  // namespace arbor::tree

#endif
