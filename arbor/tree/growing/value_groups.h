// The cases of a node, sorted by the value of a discrete attribute.
//
//   value_groups groups(node, column_index);
//   std::vector<float> weights(groups.values(), 0.0F);
//   groups.add_weights(weights);
//   groups.add_known(3, cases_of_branch);
//   groups.add_unknown(0.25F, cases_of_branch);
#ifndef ARBOR_TREE_GROWING_VALUE_GROUPS_H
#define ARBOR_TREE_GROWING_VALUE_GROUPS_H

#include <cstddef>
#include <vector>

#include "arbor/tree/growing/growing_node.h"
#include "arbor/tree/growing/node_cases.h"

namespace arbor::tree {

// Value 0 is the unknown one, value i the i-th code of the node's range.
class value_groups {
 public:
  // The rows of the node must outlive this object.
  value_groups(const node_cases& node, std::size_t column_index);

  std::size_t values() const { return ends.size(); }
  unsigned int code_of(std::size_t value) const {
    return before_first + static_cast<unsigned int>(value);
  }
  std::size_t value_of(unsigned int code) const { return code - before_first; }

  // By value.
  std::vector<std::uint64_t> counts() const;
  // Adds the weights of the cases, one after the other in their order, to those of the cases before
  // them, by value.
  void add_weights(std::vector<float>& sums) const;

  // Adds the cases of a value to `cases`, and the unknown ones with their weight multiplied by
  // `share`, unless little of it would be left (see is_sliver).
  void add_known(std::size_t value, impls::w_sequence& cases) const;
  void add_unknown(float share, impls::w_sequence& cases) const;

 private:
  std::size_t begin_of(std::size_t value) const { return value == 0 ? 0 : ends[value - 1]; }

  const case_rows& rows;
  unsigned int before_first;      // the code before the range
  impls::w_sequence by_value;     // cases of the same value keep their order
  std::vector<std::size_t> ends;  // in it, by value
};

// The branches of a discrete split, from the counts and weights of its values. `node_weight` is the
// weight of the node's cases.
std::vector<node_split::branch> branches_by_value(const std::vector<std::uint64_t>& counts,
                                                  const std::vector<float>& weights,
                                                  float node_weight, unsigned int first_code);

}  // namespace arbor::tree

#endif
