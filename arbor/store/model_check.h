// Checks a tree that was read from a file, so that the rest of the program may trust it. Internal
// to the store.
#ifndef ARBOR_STORE_MODEL_CHECK_H
#define ARBOR_STORE_MODEL_CHECK_H

#include "arbor/table/decimal_domain.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Each throws std::runtime_error with what is wrong, as in "a leaf has branches".
void check_class_column(const impls::column& column);
void check_attribute(const impls::column& column);
// The domain of a column that passed either check, whose values are the steps of a scale.
void check_scale(impls::o_set& steps, const decimal_scale& scale);
// The name of each column is its own.
void check_names(const decision_tree& tree);
void check_origin(const tree_origin& origin);
// The weight of a class: a finite number from 0 up.
void check_weight(float weight);
// Every index, code and number of the nodes, of which there is at least one. The columns have
// passed the checks above.
void check_nodes(const decision_tree& tree);

}  // namespace arbor::tree

#endif
