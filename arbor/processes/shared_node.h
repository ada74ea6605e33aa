// A growing node whose cases are shared out among processes, and its split. All functions are
// collective.
#ifndef ARBOR_PROCESSES_SHARED_NODE_H
#define ARBOR_PROCESSES_SHARED_NODE_H

#include <array>
#include <memory>
#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/processes/shared_cases.h"
#include "arbor/tree/growing/growing_node.h"
#include "arbor/tree/growing/two_sides.h"
#include "arbor/tree/growing/value_groups.h"

namespace arbor::tree {

// All columns are one piece: the processes rate them together.
class shared_node : public growing_node {
 public:
  // The group and the options must outlive the node and its splits.
  shared_node(process_group& of_processes, shared_cases of_node, const grow_options& chosen);

  std::size_t pieces() const override { return summary().may_split(options) ? 1 : 0; }
  void rate(std::size_t piece) override;
  std::shared_ptr<node_split> split() override;

 private:
  process_group& group;
  const grow_options& options;
  shared_cases node;
  std::vector<std::size_t> columns;  // that the tree may test
  std::vector<judged_split> splits;
};

class shared_split : public node_split {
 public:
  shared_split(process_group& of_processes, shared_cases of_node, float node_weight,
               const rated_test& test, const grow_options& chosen_options);

  std::unique_ptr<growing_node> take(const branch& taken) override;
  // This process's cases of a branch; nothing is sent, and nothing is known of all cases.
  shared_cases take_own(const branch& taken);

 private:
  void divide_at_threshold(float node_weight);
  void divide_by_value(float node_weight);

  process_group& group;
  const grow_options& options;
  shared_cases node;  // the cases themselves are in one of these, by sequence:
  std::vector<value_groups> groups;
  std::vector<std::array<side_cases, 2>> sides;
};

}  // namespace arbor::tree

#endif
