// The split of a node whose cases are all in this process.
//
// The branches of a discrete test get their cases when their turn comes, not before: cases whose
// value is unknown go down every branch, and there may be as many branches as cases.
#ifndef ARBOR_TREE_GROWING_LOCAL_SPLIT_H
#define ARBOR_TREE_GROWING_LOCAL_SPLIT_H

#include <array>
#include <memory>
#include <optional>

#include "arbor/tree/growing/growing_node.h"
#include "arbor/tree/growing/two_sides.h"
#include "arbor/tree/growing/value_groups.h"

namespace arbor::tree {

class local_split : public node_split {
 public:
  // `node_weight` is the weight of the node's cases. The options must outlive the split.
  local_split(node_cases of_node, float node_weight, const rated_test& test,
              const grow_options& chosen_options);

  std::unique_ptr<growing_node> take(const branch& taken) override;

 private:
  void divide_at_threshold();
  side_cases cases_of_value(const branch& taken) const;
  const impls::column& attribute() const { return *node.rows->columns()[chosen.column_index]; }

  const grow_options& options;
  node_cases node;  // the cases themselves are in one of these:
  std::optional<value_groups> groups;
  std::array<side_cases, 2> sides;
  const float weight;
};

}  // namespace arbor::tree

#endif
