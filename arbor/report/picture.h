// Pictures of graphs, drawn by Graphviz.
//
//   if (can_draw()) std::string svg = as_svg(tree_as_dot(tree, whole_depth));
#ifndef ARBOR_REPORT_PICTURE_H
#define ARBOR_REPORT_PICTURE_H

#include <string>

namespace arbor::tree {

// Whether Graphviz's program "dot" is installed.
bool can_draw();

// Draws a graph in Graphviz's language. Returns the picture as the text of an SVG file. Throws
// table_error if Graphviz fails or there are no means to run it, and std::bad_alloc.
std::string as_svg(const std::string& graph);

}  // namespace arbor::tree

#endif
