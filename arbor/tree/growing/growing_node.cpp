#include "arbor/tree/growing/growing_node.h"

#include <utility>

namespace arbor::tree {

growing_node::growing_node(node_cases of_node, const grow_options& options)
    : node(std::move(of_node)),
      all_weight(total_weight(*node.cases)),
      classes(present_classes(tree::class_weights(node.rows->class_column(), *node.cases))) {
  if (!may_split(options)) return;
  gather_rows(node);
  search.emplace(node, classes, all_weight, options.min_weight);
}

bool growing_node::may_split(const grow_options& options) const {
  return classes.size() > 1 && all_weight >= 2 * options.min_weight &&
         node.depth < options.max_depth;
}

std::shared_ptr<node_split> growing_node::split() {
  const std::optional<rated_test> best = search ? search->best() : std::nullopt;
  if (!best) return nullptr;
  return std::make_shared<node_split>(std::move(node), all_weight, *best);
}

}  // namespace arbor::tree
