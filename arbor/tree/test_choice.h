// Which attribute a node tests: the one with the best gain ratio among those whose gain is at least
// the average gain of all attributes that split the cases.
#ifndef ARBOR_TREE_TEST_CHOICE_H
#define ARBOR_TREE_TEST_CHOICE_H

#include <cstddef>
#include <optional>

#include "arbor/tree/node_cases.h"
#include "arbor/tree/thread_pool.h"

namespace arbor::tree {

struct rated_test {
  std::size_t column_index;  // of the tested column in the table
  impls::column::splitting_desc rating;
};

// The best test of a node; none if no attribute splits its cases. `node_weight` is the weight of
// the cases, `min_weight` the least weight of a branch. Ranges of codes that turn out to be far too
// wide are narrowed in `node`. The columns are rated on the threads of `pool`; null for one thread.
std::optional<rated_test> best_test(node_cases& node, float node_weight, float min_weight,
                                    thread_pool* pool);

}  // namespace arbor::tree

#endif
