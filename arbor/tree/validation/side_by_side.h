// Grows several trees on one table side by side, each with one thread.
//
//   grow_side_by_side(golf, options, 10, [&](std::size_t i, const grow_options& own) {
//     trees[i] = grow_tree(golf, training_cases[i], own);
//   });
#ifndef ARBOR_TREE_VALIDATION_SIDE_BY_SIDE_H
#define ARBOR_TREE_VALIDATION_SIDE_BY_SIDE_H

#include <cstddef>
#include <functional>

#include "arbor/table/table.h"
#include "arbor/tree/grower.h"

namespace arbor::tree {

// Calls `work` once with each number from 0 to count - 1, in any order, on the threads of the
// options. Its own options ask for one thread, and their progress is its part of the progress of
// all. Anything that a call throws is rethrown once all threads have ended.
void grow_side_by_side(const table& rows, const grow_options& options, std::size_t count,
                       const std::function<void(std::size_t, const grow_options&)>& work);

}  // namespace arbor::tree

#endif
