#include "arbor/tree/grower.h"

#include <utility>

#include "arbor/tree/growing/grown_nodes.h"
#include "arbor/tree/growing/subtree.h"
#include "arbor/tree/pruning.h"

namespace arbor::tree {

namespace {

node_cases root_cases(const table& training, const impls::w_sequence& cases) {
  // The caller keeps the cases of the root.
  node_cases root{
      std::make_shared<const case_rows>(training), {std::shared_ptr<void>(), &cases}, {}, 0};
  // This question also puts a domain in order, which several threads could not do at once.
  for (const auto& attribute : training.columns) root.ranges.push_back(attribute->get_range());
  return root;
}

}  // namespace

grown_nodes grow_unpruned(const table& training, const impls::w_sequence& cases,
                          const grow_options& options) {
  growth shared(options, cases);
  if (shared.pool.size() == 1) {
    subtree all(shared);
    all.grow(root_cases(training, cases));
    return all.take_nodes();
  }
  parallel_subtree all(shared, cases.size());
  all.grow(root_cases(training, cases));
  return all.take_nodes();
}

decision_tree grow_tree(const table& training, const impls::w_sequence& cases,
                        const grow_options& options) {
  grown_nodes grown = grow_unpruned(training, cases, options);
  if (options.prune) prune(grown.nodes, options.confidence);
  decision_tree tree = to_tree(training, cases, std::move(grown));
  tree.origin = {training.name,     cases.size(),  options.min_weight,
                 options.max_depth, options.prune, options.confidence};
  return tree;
}

}  // namespace arbor::tree
