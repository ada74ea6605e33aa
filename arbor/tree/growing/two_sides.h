// Divides the cases of a node at a threshold: both sides at once, in two passes over the cases.
//
//   std::array<side_cases, 2> sides = divide_at_threshold(node, weight, column_index, threshold);
#ifndef ARBOR_TREE_GROWING_TWO_SIDES_H
#define ARBOR_TREE_GROWING_TWO_SIDES_H

#include <array>
#include <cstddef>
#include <memory>

#include "arbor/tree/growing/node_cases.h"

namespace arbor::tree {

struct side_cases {
  std::shared_ptr<const impls::w_sequence> cases;  // in the order of the node's
  float share;       // of the known weight, by which the weight of the unknown cases is multiplied
  code_range range;  // of the threshold and the known codes of the side
};

// Returns the sides of the codes up to `threshold` and of those above it. `node_weight` is the
// weight of the node's cases. Unknown cases are on both sides, unless little of their weight would
// be left (see is_sliver).
std::array<side_cases, 2> divide_at_threshold(const node_cases& node, float node_weight,
                                              std::size_t column_index, unsigned int threshold);

}  // namespace arbor::tree

#endif
