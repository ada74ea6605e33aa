// A tree as text.
//
//   std::cout << tree_as_text(tree, depth_of_lines(tree, 40)) << size_line(tree) << '\n';
#ifndef ARBOR_REPORT_TREE_REPORT_H
#define ARBOR_REPORT_TREE_REPORT_H

#include <cstddef>
#include <limits>
#include <string>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// The depth that shows a tree of any size.
constexpr std::size_t whole_depth = std::numeric_limits<std::size_t>::max();

// A line for each branch, indented by the depth of its test. A leaf follows after a colon: its
// class and, in brackets, the weight of its training cases and after a slash the weight of those of
// other classes. A test shows its number in square brackets; the root is number 0:
//
//   outlook = overcast: yes (4)
//   outlook = sunny [3]
//   |   humidity <= 70: yes (2)
//   |   humidity > 70: no (3/1)
//
// Tests with `depth` tests above them are not opened; their line gives the number of leaves below.
// Lines more than forty levels deep give their depth instead of being indented further.
std::string tree_as_text(const decision_tree& tree, std::size_t depth);

// The greatest depth at which the text has at most `lines` lines, but at least 1.
std::size_t depth_of_lines(const decision_tree& tree, std::size_t lines);

// The first `lines` lines of a text and, if it has more, a line that says how many.
std::string first_lines(const std::string& text, std::size_t lines);

// "17 nodes, 9 leaves, depth 4"
std::string size_line(const decision_tree& tree);

// Two lines: the class and the size, and, unless the model does not have it, the origin:
//
//   class "play": 8 nodes, 5 leaves, depth 2
//   grown on 14 rows of golf.csv with minimum weight 2, confidence 0.1
std::string description(const decision_tree& tree);

// A line of headings and a line for each attribute of the tree, the most important first, with its
// importance (attribute_importance.h) and the share of that in the sum. Empty for a single leaf.
std::string importance_as_text(const decision_tree& tree);

}  // namespace arbor::tree

#endif
