// A tree as JSON, for programs.
#ifndef ARBOR_REPORT_TREE_JSON_H
#define ARBOR_REPORT_TREE_JSON_H

#include <string>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// One object {"class", "classes": [text], "nodes": [{"node", "weights": [number by class], "class",
// "parent", "branch", "share", "attribute", "threshold", "children": [node]}]}. The root is node 0.
// "branch" is the text of a discrete value, "<=" or ">"; a threshold is a text. What does not apply
// to a node is left out. Numbers read back to the same float; bytes that are not UTF-8 become
// U+FFFD.
std::string tree_as_json(const decision_tree& tree);

}  // namespace arbor::tree

#endif
