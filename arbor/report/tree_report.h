// A tree, and how well it does, for a person or for a program.
#ifndef ARBOR_REPORT_TREE_REPORT_H
#define ARBOR_REPORT_TREE_REPORT_H

#include <limits>
#include <string>

#include "arbor/tree/confusion_matrix.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

constexpr std::size_t whole_depth = std::numeric_limits<std::size_t>::max();

// An indented line for each branch. A leaf stands behind a colon: its class, and in brackets the
// weight of its training cases and, behind a stroke, what of it is of other classes. A test has its
// number in square brackets; the root is 0:
//
//   outlook = overcast: yes (4)
//   outlook = sunny [3]
//   |   humidity <= 70: yes (2)
//   |   humidity > 70: no (3/1)
//
// Tests below `depth` others are left out, and their line says how many leaves there are. Below
// forty others a line tells its depth instead of being indented further.
std::string tree_as_text(const decision_tree& tree, std::size_t depth);

// The greatest depth at which the text has at most `lines` lines, but at least 1.
std::size_t depth_of_lines(const decision_tree& tree, std::size_t lines);

// The first lines of a text, at most `lines`, with a word about those that are left out.
std::string first_lines(const std::string& text, std::size_t lines);

// A graph in the language of Graphviz, tests as ellipses and leaves as boxes.
std::string tree_as_dot(const decision_tree& tree, std::size_t depth);

// One object {"class", "classes": [text], "nodes": [{"node", "weights": [number by class], "class",
// "parent", "branch", "share", "attribute", "threshold", "children": [node]}]}, with the root as
// node 0. "branch" is a discrete value's text, "<=" or ">"; a threshold is a text. What does not
// apply to a node is left out. Numbers read back to the same float; bytes that are not UTF-8 become
// U+FFFD.
std::string tree_as_json(const decision_tree& tree);

// "17 nodes, 9 leaves, depth 4"
std::string size_line(const decision_tree& tree);

// "errors on the 105 training cases: 3 (2.9%)"
std::string error_line(const std::string& which_cases, const confusion_matrix& matrix);

// A line for each class, a column for each class that was said; only the classes that occur, and a
// word instead when they are too many to be read.
std::string matrix_as_text(const decision_tree& tree, const confusion_matrix& matrix);

}  // namespace arbor::tree

#endif
