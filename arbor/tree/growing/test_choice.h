// Which attribute a node tests: the one with the best gain ratio among those whose judged gain is
// at least the average judged gain of all attributes for which it is above 0.
//
// The gain ratio is that of the gain as it is: the split information, by which it is divided,
// already grows with the number of values. See judged_split.h.
#ifndef ARBOR_TREE_GROWING_TEST_CHOICE_H
#define ARBOR_TREE_GROWING_TEST_CHOICE_H

#include <cstddef>
#include <optional>
#include <vector>

#include "arbor/table/thread_pool.h"
#include "arbor/tree/growing/judged_split.h"
#include "arbor/tree/growing/node_cases.h"

namespace arbor::tree {

struct split_choice {
  double average_judged_gain = 0;   // of the splits for which it is above 0; 0 if there are none
  std::optional<std::size_t> best;  // the entry of the chosen split, if there is one
};

// Chooses among the splits of a node. Of equally good ones the first is chosen.
split_choice choose(const std::vector<judged_split>& splits);

struct rated_test {
  std::size_t column_index;  // of the tested column in the table
  impls::column::splitting_desc rating;
};

// The best test of a node; none if no attribute splits its cases so that a gain is left when it is
// judged. `class_weights` are those of the cases, `node_weight` is their sum, and `min_weight` the
// least weight of a branch. Ranges of codes that turn out to be far too wide are narrowed in
// `node`. The columns are rated on the threads of `pool`; null for one thread.
std::optional<rated_test> best_test(node_cases& node,
                                    const std::vector<weighted_class>& class_weights,
                                    float node_weight, float min_weight, thread_pool* pool);

}  // namespace arbor::tree

#endif
