// The texts of nodes, branches and classes that all reports of a tree share.
//
// Names and values are returned as they are; a report escapes them by the rules of its format.
#ifndef ARBOR_REPORT_NODE_TEXT_H
#define ARBOR_REPORT_NODE_TEXT_H

#include <cstddef>
#include <string>

#include "arbor/tree/class_distribution.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// A weight with at most two decimals: 4, 2.5, 0.33.
std::string weight_text(double weight);

// The class with the code `entry` + 1. The entry after the last class of a class column, or of a
// tree's, is for all other classes: "(another)".
std::string class_text(const impls::column& classes, std::size_t entry);
std::string class_text(const decision_tree& tree, std::size_t entry);

// The threshold of a test of a continuous attribute.
std::string test_threshold(const impls::column& tested, const tree_node& test);

// The branch of the test above that a node is on: the value of a discrete attribute, "<=" or ">".
std::string branch_value(const impls::column& tested, const tree_node& child);

// The class that is predicted at a node, given by its entry and the node's index, and, in brackets, the weight of its
// training cases and after a slash the weight of those of other classes, if there are any:
// "no (3/1)". On one line.
std::string leaf_text(const decision_tree& tree, std::size_t index, std::size_t predicted);

}  // namespace arbor::tree

#endif
