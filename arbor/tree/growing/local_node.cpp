#include "arbor/tree/growing/local_node.h"

#include <utility>

#include "arbor/tree/growing/local_split.h"

namespace arbor::tree {

namespace {

node_summary summary_of(const node_cases& node) {
  const impls::column& classes = node.rows->class_column();
  std::vector<double> sums(classes.get_distinct(), 0.0);
  add_class_weights(classes, *node.cases, sums);
  return {node.cases->size(), sums, node.depth};
}

}  // namespace

local_node::local_node(node_cases of_node, const grow_options& chosen)
    : growing_node(summary_of(of_node)), options(chosen), node(std::move(of_node)) {
  if (!summary().may_split(options)) return;
  gather_rows(node);
  search.emplace(node, summary().class_weights, summary().weight, options.min_weight);
}

std::shared_ptr<node_split> local_node::split() {
  const std::optional<rated_test> best = search ? search->best() : std::nullopt;
  if (!best) return nullptr;
  return std::make_shared<local_split>(std::move(node), summary().weight, *best, options);
}

}  // namespace arbor::tree
