// A node's cases, divided by its split: which branches there are, and the cases of each.
//
// A branch gets its cases when its turn comes, not before: cases whose value is unknown go down
// every branch, and there may be as many branches as cases.
#ifndef ARBOR_TREE_GROWING_NODE_SPLIT_H
#define ARBOR_TREE_GROWING_NODE_SPLIT_H

#include <cstddef>
#include <memory>
#include <vector>

#include "arbor/tree/growing/node_cases.h"
#include "arbor/tree/growing/test_choice.h"
#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

class node_split {
 public:
  struct branch {
    unsigned int number;  // see tree_node::branch
    // The known cases of a discrete branch in the order of values: [first_case, end_case). Of a
    // continuous branch only the difference means anything.
    std::size_t first_case;
    std::size_t end_case;

    std::size_t size() const { return end_case - first_case; }
  };

  // `node_weight` is the weight of the node's cases, `test` what best_test has chosen for it.
  node_split(node_cases of_node, float node_weight, const rated_test& test);

  // In the order of their numbers. Values of a discrete attribute that no case has give no branch.
  const std::vector<branch>& branches() const { return all_branches; }

  // The cases of a branch. `share` receives the branch's share of the known weight, by which the
  // weight of the unknown cases is multiplied. The shares of all branches add up to 1.
  node_cases cases_of(const branch& taken, float& share) const;

 private:
  void divide_in_two();
  void divide_by_value();
  std::unique_ptr<impls::w_sequence> cases_of_value(const branch& taken, float& share,
                                                    code_range& range) const;
  std::unique_ptr<impls::w_sequence> cases_of_side(unsigned int number, float& share,
                                                   code_range& range) const;
  std::unique_ptr<impls::w_sequence> partitioned_side(unsigned int number, float& share,
                                                      code_range& range) const;
  void share_out_unknown(impls::w_sequence& cases, unsigned int number, float& share) const;
  void drop_slivers(impls::w_sequence& cases) const;
  const impls::column& attribute() const { return *node.rows->columns()[column_index]; }

  node_cases node;  // of a discrete split the unknown cases come first, then value by value
  float weight;
  std::size_t column_index;
  unsigned int threshold = 0;           // the code, of a continuous split
  impls::column::partition_desc split;  // its text is only set for a user's class of column
  std::vector<branch> all_branches;
  std::size_t unknown_count = 0;  // of a discrete split
};

}  // namespace arbor::tree

#endif
