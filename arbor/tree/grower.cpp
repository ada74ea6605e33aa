#include "arbor/tree/grower.h"

#include <utility>

#include "arbor/tree/growing/growth.h"
#include "arbor/tree/growing/local_node.h"
#include "arbor/tree/growing/subtree.h"
#include "arbor/tree/pruning.h"

namespace arbor::tree {

grown_nodes grow_unpruned(const table& training, const impls::w_sequence& cases,
                          const grow_options& options) {
  return grow_from(std::make_unique<local_node>(root_cases(training, cases), options), options);
}

decision_tree finished_tree(const table& training, std::size_t rows, grown_nodes grown,
                            const occurring_codes& occurring, const grow_options& options) {
  decision_tree tree = to_tree(training, std::move(grown), occurring);
  tree.origin = {training.name,     rows,          options.min_weight,
                 options.max_depth, options.prune, options.confidence};
  return tree;
}

decision_tree grow_tree(const table& training, const impls::w_sequence& cases,
                        const grow_options& options) {
  grown_nodes grown = grow_unpruned(training, cases, options);
  if (options.prune) prune(grown.nodes, options.confidence);
  return finished_tree(training, cases.size(), std::move(grown), codes_among(training, cases),
                       options);
}

}  // namespace arbor::tree
