// A tree as text.
//
//   write_tree_text(std::cout, tree, excerpt_of_lines(tree, 40), 60);
//   std::cout << size_line(tree) << '\n';
//
// Names and values of more than `width` columns are shortened, see shown_text.h.
#ifndef ARBOR_REPORT_TREE_REPORT_H
#define ARBOR_REPORT_TREE_REPORT_H

#include <cstddef>
#include <limits>
#include <ostream>
#include <string>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// The depth that shows a tree of any size.
inline constexpr std::size_t whole_depth = std::numeric_limits<std::size_t>::max();

// The width that names and values are shortened to where nothing asks for another one.
inline constexpr std::size_t usual_width = 60;

// How much of a tree is written.
struct tree_excerpt {
  // Tests with so many tests above them are not opened; their line gives the number of leaves
  // below.
  std::size_t depth = whole_depth;
  // After so many lines, another one says how many are left out.
  std::size_t lines = std::numeric_limits<std::size_t>::max();
};

// The excerpt of at most `lines` lines that has every node up to the greatest depth for which that
// is enough. If it is not enough for the tests of depth 1, it has the first of them.
tree_excerpt excerpt_of_lines(const decision_tree& tree, std::size_t lines);

// Writes a line for each branch, indented by the depth of its test. A leaf follows after a colon:
// its class and, in brackets, the weight of its training cases and after a slash the weight of
// those of other classes. A test shows its number in square brackets; the root is number 0:
//
//   outlook = overcast: yes (4)
//   outlook = sunny [3]
//   |   humidity <= 70: yes (2)
//   |   humidity > 70: no (3/1)
//
// Lines more than forty levels deep give their depth instead of being indented further.
void write_tree_text(std::ostream& out, const decision_tree& tree, const tree_excerpt& excerpt = {},
                     std::size_t width = usual_width);

// "17 nodes, 9 leaves, depth 4"
std::string size_line(const decision_tree& tree);

// Two lines: the class and the size, and, unless the model does not have it, the origin:
//
//   class "play": 8 nodes, 5 leaves, depth 2
//   grown on 14 rows of golf.csv with minimum weight 2, confidence 0.1
std::string description(const decision_tree& tree, std::size_t width);

// Writes a line of headings and a line for each attribute of the tree, the most important first,
// with its importance (attribute_importance.h) and the share of that in the sum.
void write_importance(std::ostream& out, const decision_tree& tree, std::size_t width);

}  // namespace arbor::tree

#endif
