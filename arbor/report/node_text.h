// The texts of nodes, branches and classes that the reports of a tree share.
#ifndef ARBOR_REPORT_NODE_TEXT_H
#define ARBOR_REPORT_NODE_TEXT_H

#include <cstddef>
#include <string>

#include "arbor/report/column_texts.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// A weight with at most two decimals: 4, 2.5, 0.33.
std::string weight_text(double weight);

// The class with the code `entry` + 1, as it stood in the file. The entry after the last class is
// for all other classes: "(another)".
std::string class_text(const impls::column& classes, std::size_t entry);

// The threshold of a test of a continuous attribute.
std::string test_threshold(const impls::column& tested, const tree_node& test);

// The branch of a test of a continuous attribute that a node is on: "<=" or ">".
const char* side_of_threshold(const tree_node& child);

// The branch of any test that a node is on: the value of a discrete attribute, "<=" or ">".
std::string branch_value(column_texts& texts, const impls::column& tested, const tree_node& child);

// The class that is predicted at a node and, in brackets, the weight of its training cases and
// after a slash the weight of those of other classes, if there are any: "no (3/1)". `predicted` is
// the entry of the class.
std::string leaf_text(column_texts& texts, const decision_tree& tree, const tree_node& node,
                      std::size_t predicted);

}  // namespace arbor::tree

#endif
