// Divides the cases of a node at a threshold: both sides at once, in two passes over the cases. The
// first weighs the sides, the second copies the cases.
//
//   const side_weights weights = weigh_sides(node, column_index, threshold, {});
//   std::array<side_cases, 2> sides =
//       divide_at_threshold(node, column_index, threshold, weights.known_cases,
//                           weights.sides(threshold, node_weight));
#ifndef ARBOR_TREE_GROWING_TWO_SIDES_H
#define ARBOR_TREE_GROWING_TWO_SIDES_H

#include <array>
#include <cstddef>
#include <limits>
#include <memory>

#include "arbor/tree/growing/node_cases.h"

namespace arbor::tree {

struct side_cases {
  std::shared_ptr<const impls::w_sequence> cases;  // in the order of the node's
  float share;       // of the known weight, by which the weight of the unknown cases is multiplied
  code_range range;  // of the threshold and the known codes of the side
};

// What a side has beside its cases.
struct side_shape {
  float share;
  code_range range;
};

// What the first pass finds. Of each pair, the first is of the low side.
struct side_weights {
  std::array<std::size_t, 2> known_cases{};
  std::size_t unknown_cases = 0;
  std::array<float, 2> known_weight{};
  // The same in double, where light cases are not lost in the rounding, and the unknown weight. Of
  // an attribute that has no unknown value they stay 0.
  std::array<double, 2> exact_weight{};
  double unknown_weight = 0;
  unsigned int before_least_code = std::numeric_limits<unsigned int>::max();
  unsigned int greatest_code = 0;

  // Adds those of other cases. All sums must be exact.
  void add(const side_weights& others);
  // Both sides of the threshold. `node_weight` is the weight of the node's cases.
  std::array<side_shape, 2> sides(unsigned int threshold, float node_weight) const;
};

// Adds the cases of a node, one after the other, to the weights of those before them.
side_weights weigh_sides(const node_cases& node, std::size_t column_index, unsigned int threshold,
                         side_weights before);

// Returns the sides of the codes up to `threshold` and of those above it. `known_cases` are the
// numbers of the node's known cases on both. Unknown cases are on both sides, unless little of
// their weight would be left (see is_sliver).
std::array<side_cases, 2> divide_at_threshold(const node_cases& node, std::size_t column_index,
                                              unsigned int threshold,
                                              const std::array<std::size_t, 2>& known_cases,
                                              const std::array<side_shape, 2>& sides);

}  // namespace arbor::tree

#endif
