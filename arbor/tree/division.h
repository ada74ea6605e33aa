// The cases of a test, and how its branches come by theirs.
#ifndef ARBOR_TREE_DIVISION_H
#define ARBOR_TREE_DIVISION_H

#include <functional>
#include <memory>
#include <vector>

#include "arbor/tree/case_rows.h"

namespace arbor::tree {

using code_range = strata::util::pair<unsigned int, unsigned int>;

// The cases of a node of a growing tree.
struct node_cases {
  std::shared_ptr<const case_rows> rows;  // that their row numbers mean
  std::shared_ptr<const impls::w_sequence> cases;
  std::vector<code_range>
      ranges;              // by column of the table: bounds of the known codes among the cases
  unsigned int depth = 0;  // of tests above the node
};

// Branches take their cases when their turn comes, and not before: the unknown ones go down every
// branch, and there may be as many branches as cases.
class division {
 public:
  // What of the cases is on a branch.
  struct branch {
    unsigned int number;     // see tree_node::branch
    std::size_t first_case;  // of a discrete test: the known ones, from this one
    std::size_t
        end_case;  // to before this one; of a continuous one both only tell how many there are

    std::size_t size() const { return end_case - first_case; }
  };

  // Divides the cases of a node, of the weight `node_weight`, by one of the columns.
  division(node_cases of_node, float node_weight, std::size_t tested_column,
           impls::column::partition_desc chosen_split);

  // In the order of their numbers. Of a discrete test, those of values that no case has are left
  // out.
  const std::vector<branch>& branches() const { return all_branches; }

  // The cases of a branch; `share` receives that of the unknown ones.
  node_cases cases_of(const branch& taken, float& share) const;

 private:
  void divide_in_two();
  void divide_by_value();
  void drop_slivers(impls::w_sequence& cases) const;
  const impls::column& attribute() const { return *node.rows->columns()[column_index]; }

  node_cases node;  // of a discrete test the unknown cases come first, then value by value
  float weight;
  std::size_t column_index;
  impls::column::partition_desc split;
  std::vector<branch> all_branches;
  std::size_t unknown_count = 0;  // of a discrete test
};

}  // namespace arbor::tree

#endif
