// A tree as a graph for Graphviz.
#ifndef ARBOR_REPORT_TREE_GRAPH_H
#define ARBOR_REPORT_TREE_GRAPH_H

#include <cstddef>
#include <ostream>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Writes the graph in Graphviz's language: tests are ellipses, leaves are boxes. A test with
// `depth` tests above it is shown as the leaf that it would be, with "..." after it. Names and
// values are shortened to 60 columns, see shown_text.h; a picture would have no place for more.
void write_tree_dot(std::ostream& out, const decision_tree& tree, std::size_t depth);

}  // namespace arbor::tree

#endif
