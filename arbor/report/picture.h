// Pictures of graphs, drawn by Graphviz.
//
//   if (can_draw()) draw(tree_as_dot(tree, whole_depth), "golf.svg");
#ifndef ARBOR_REPORT_PICTURE_H
#define ARBOR_REPORT_PICTURE_H

#include <string>

namespace arbor::tree {

// Whether Graphviz's program "dot" is installed.
bool can_draw();

// Draws a graph in Graphviz's language as an SVG file, which replaces the file of that name. Throws
// table_error if Graphviz fails or the file cannot be written; the old file is unchanged then.
void draw(const std::string& graph, const std::string& path);

}  // namespace arbor::tree

#endif
