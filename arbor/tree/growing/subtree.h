// Grows a tree, or a part of one, from one node.
//
// Branches wait on a stack until their turn comes, because a recursive function could overflow the
// thread's stack on a deep tree.
#ifndef ARBOR_TREE_GROWING_SUBTREE_H
#define ARBOR_TREE_GROWING_SUBTREE_H

#include <cstddef>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "arbor/table/thread_pool.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/growing/growing_node.h"
#include "arbor/tree/growing/grown_nodes.h"
#include "arbor/tree/task_stack.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

// What all subtrees of one growing tree share.
class growth : private strata::util::nocopy {
 public:
  growth(const grow_options& chosen, const node_summary& root);

  // Reports progress: cases of this weight have come to a leaf. Any thread may call it, also with 0
  // before work that takes some time.
  void add_settled(float weight);

  const grow_options& options;
  thread_pool pool;

 private:
  const double all_weight;
  std::mutex mutex;
  double settled_weight = 0;
};

// A branch whose cases are still part of its parent's split.
struct open_branch {
  std::size_t node;
  std::shared_ptr<node_split> parent;
  node_split::branch branch;

  std::unique_ptr<growing_node> take() const { return parent->take(branch); }
};

// Makes a node a test or, if `split` is null, a leaf. Returns the branches, the largest first: it
// goes to the bottom of a stack and is processed last, so that waiting branches hold at most twice
// the root's cases.
std::vector<open_branch> make_node(grown_nodes& grown, std::size_t number,
                                   const node_summary& summary,
                                   const std::shared_ptr<node_split>& split);

// Grows on the calling thread.
class subtree {
 public:
  explicit subtree(growth& of_tree) : shared(of_tree) {}

  void grow(growing_node& root);
  grown_nodes take_nodes() { return std::move(grown); }

 private:
  void settle(std::size_t number, growing_node& node);

  growth& shared;
  grown_nodes grown;
  std::vector<open_branch> open;
};

// Grows on all threads of the pool: the columns of a large node are rated in parallel, and large
// nodes and the subtrees of small ones grow in parallel.
class parallel_subtree {
 public:
  parallel_subtree(growth& of_tree, std::size_t root_cases);

  void grow(const std::shared_ptr<growing_node>& root);
  grown_nodes take_nodes() { return std::move(grown); }

 private:
  void settle(std::size_t number, const std::shared_ptr<growing_node>& node);
  void conclude(std::size_t number, growing_node& node);

  growth& shared;
  std::size_t small;  // nodes of fewer cases are grown by one thread, with all below them
  task_stack tasks;
  std::mutex mutex;  // guards `grown`
  grown_nodes grown;
};

// Grows from a node, with or without threads.
grown_nodes grow_from(std::unique_ptr<growing_node> root, const grow_options& options);

}  // namespace arbor::tree

#endif
