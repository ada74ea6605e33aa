// The two halves of growing a tree, for whoever prunes it in another way or grew its nodes
// elsewhere.
//
//   grown_nodes grown = grow_unpruned(golf, golf.cases, options);
//   prune(grown.nodes, options.confidence);
//   const std::size_t rows = golf.cases.size();
//   decision_tree tree = finished_tree(golf, rows, std::move(grown), nullptr, options);
#ifndef ARBOR_TREE_GROWING_GROWTH_H
#define ARBOR_TREE_GROWING_GROWTH_H

#include <cstddef>

#include "arbor/table/table.h"
#include "arbor/tree/decision_tree.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/growing/grown_nodes.h"

namespace arbor::tree {

// The nodes of the tree that grow_tree would grow without pruning.
grown_nodes grow_unpruned(const table& training, const impls::w_sequence& cases,
                          const grow_options& options);

// Makes the tree of nodes that were grown with these options, and pruned if these say so. `rows` is
// the number of training cases; see to_tree for `occurring`.
decision_tree finished_tree(const table& training, std::size_t rows, grown_nodes grown,
                            const occurring_codes& occurring, const grow_options& options);

}  // namespace arbor::tree

#endif
