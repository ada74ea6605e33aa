// A tree as JSON, for programs.
#ifndef ARBOR_REPORT_TREE_JSON_H
#define ARBOR_REPORT_TREE_JSON_H

#include <ostream>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Writes one object {"format", "version", "class", "classes": [text], "origin": {"table", "rows",
// "min_weight", "max_depth", "confidence"}, "attributes": [{"name", "kind", "type", "importance"}],
// "nodes": [{"node", "weights": [number by class], "class", "parent", "branch", "share",
// "attribute", "threshold", "children": [node]}]}. The root is node 0. "class" of a node is the one
// that is predicted there, "branch" is the text of a discrete value, "<=" or ">"; a threshold is a
// text. What does not apply to a node is left out. "origin" is null for a model that does not have
// it, "max_depth" without a limit, and "confidence" where the tree was not pruned. Numbers read
// back to the same float; see json_writer.h for texts.
//
// A class, attribute or branch of more than 200 bytes is not repeated by each node: the node has
// its index in a list "long_texts" instead, which only stands at the end where there are any.
//
// The weights of many classes are mostly 0. Of a tree with more than a thousand classes, a node has
// in place of "weights" a list "class_weights": [[index in "classes", weight]] of those that occur.
void write_tree_json(std::ostream& out, const decision_tree& tree);

}  // namespace arbor::tree

#endif
