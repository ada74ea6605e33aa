// A branch as the column itself divides the cases: a class of column that a user has derived may do
// that in its own way.
#ifndef ARBOR_TREE_GROWING_COLUMN_PARTITION_H
#define ARBOR_TREE_GROWING_COLUMN_PARTITION_H

#include "arbor/tree/growing/node_cases.h"
#include "arbor/tree/growing/test_choice.h"
#include "arbor/tree/growing/two_sides.h"

namespace arbor::tree {

// Returns the branch `number` of a test among `cases`, those of the node that may be on it: all of
// a continuous test, and of a discrete one those of the value and the unknown ones. `node_weight`
// is the weight of the node's cases. Throws what the column's `partition` throws, and
// std::logic_error if that does not keep the order of the cases.
side_cases partition_by_column(const case_rows& rows, const impls::w_sequence& cases,
                               float node_weight, const rated_test& test, unsigned int number);

}  // namespace arbor::tree

#endif
