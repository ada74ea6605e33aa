// A tree as a graph for Graphviz.
#ifndef ARBOR_REPORT_TREE_GRAPH_H
#define ARBOR_REPORT_TREE_GRAPH_H

#include <cstddef>
#include <string>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// The graph in Graphviz's language: tests are ellipses, leaves are boxes. A test with `depth` tests
// above it is shown as the leaf that it would be, with "..." after it.
std::string tree_as_dot(const decision_tree& tree, std::size_t depth);

}  // namespace arbor::tree

#endif
