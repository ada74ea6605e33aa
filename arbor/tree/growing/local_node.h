// A growing node whose cases are all in this process. Each column is a piece to rate.
#ifndef ARBOR_TREE_GROWING_LOCAL_NODE_H
#define ARBOR_TREE_GROWING_LOCAL_NODE_H

#include <memory>
#include <optional>

#include "arbor/tree/growing/growing_node.h"
#include "arbor/tree/growing/node_cases.h"
#include "arbor/tree/growing/test_choice.h"

namespace arbor::tree {

class local_node : public growing_node {
 public:
  // The options must outlive the node and its splits.
  local_node(node_cases of_node, const grow_options& chosen);

  std::size_t pieces() const override { return search ? search->columns() : 0; }
  void rate(std::size_t piece) override { search->rate(piece); }
  std::shared_ptr<node_split> split() override;

 private:
  const grow_options& options;
  node_cases node;
  std::optional<test_search> search;
};

}  // namespace arbor::tree

#endif
