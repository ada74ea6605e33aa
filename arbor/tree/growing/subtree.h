// Grows a tree, or a part of one, from the cases of one node.
//
// Branches wait on a stack of their own until their turn comes, because a recursive function could
// overflow the thread's stack on a deep tree.
#ifndef ARBOR_TREE_GROWING_SUBTREE_H
#define ARBOR_TREE_GROWING_SUBTREE_H

#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "arbor/table/thread_pool.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/growing/grown_nodes.h"
#include "arbor/tree/growing/node_split.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

// What all subtrees of one growing tree share.
class growth : private strata::util::nocopy {
 public:
  growth(const grow_options& chosen, const impls::w_sequence& cases);

  // Reports progress: cases of this weight have come to a leaf. Any thread may call it.
  void add_settled(float weight);

  const grow_options& options;
  thread_pool pool;

 private:
  const double all_weight;
  std::mutex mutex;
  double settled_weight = 0;
};

class subtree {
 public:
  explicit subtree(growth& of_tree) : shared(of_tree), options(of_tree.options) {}

  // Grows from `root`, on the calling thread.
  void grow(node_cases root);

  // The same on all threads of the pool: the columns of a large node are rated in parallel, and
  // small nodes' subtrees are grown in parallel.
  void grow_in_parallel(node_cases root);

  grown_nodes take_nodes() { return std::move(grown); }

 private:
  // A branch whose cases have not yet been separated from those of its parent.
  struct open_branch {
    std::size_t node;
    std::shared_ptr<const node_split> parent;
    node_split::branch branch;
  };
  // A node that has its cases, and will become a test or a leaf.
  struct waiting_node {
    std::size_t node;
    node_cases cases;
  };

  waiting_node take_next();
  void grow_all(std::vector<waiting_node> roots);
  void settle(waiting_node next, thread_pool* pool);
  bool may_split(const waiting_node& next, float weight) const;
  void make_test(waiting_node next, float weight, const rated_test& test);

  growth& shared;
  const grow_options& options;
  grown_nodes grown;
  std::vector<open_branch> open;
};

}  // namespace arbor::tree

#endif
