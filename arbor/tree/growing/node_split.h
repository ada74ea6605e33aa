// A node's cases, divided by its test: which branches there are, and the cases of each.
//
// The branches of a discrete test get their cases when their turn comes, not before: cases whose
// value is unknown go down every branch, and there may be as many branches as cases.
#ifndef ARBOR_TREE_GROWING_NODE_SPLIT_H
#define ARBOR_TREE_GROWING_NODE_SPLIT_H

#include <array>
#include <cstddef>
#include <vector>

#include "arbor/tree/growing/node_cases.h"
#include "arbor/tree/growing/test_choice.h"
#include "arbor/tree/growing/two_sides.h"

namespace arbor::tree {

class node_split {
 public:
  struct branch {
    unsigned int number;  // see tree_node::branch
    // The branch's share of the known weight, by which the weight of the unknown cases is
    // multiplied. The shares of all branches add up to 1.
    float share;
    std::size_t size;   // the number of its cases; of a discrete branch, of the known ones
    std::size_t first;  // of a discrete branch: the first case in the order of values
  };

  // `node_weight` is the weight of the node's cases, `chosen` the test that it gets.
  node_split(node_cases of_node, float node_weight, const rated_test& chosen);

  const rated_test& test() const { return chosen_test; }
  // In the order of their numbers. Values of a discrete attribute that no case has give no branch.
  const std::vector<branch>& branches() const { return all_branches; }

  // Takes the cases of a branch, once. Several threads may take those of different branches.
  node_cases take_cases(const branch& taken);

 private:
  void divide_at_threshold();
  void divide_by_value();
  side_cases cases_of_value(const branch& taken) const;
  const impls::column& attribute() const { return *node.rows->columns()[chosen_test.column_index]; }

  node_cases node;     // of a discrete test the unknown cases come first, then value by value
  const float weight;  // of the cases
  const rated_test chosen_test;
  std::vector<branch> all_branches;
  std::size_t unknown_count = 0;    // of a discrete test
  std::array<side_cases, 2> sides;  // of a threshold
};

}  // namespace arbor::tree

#endif
