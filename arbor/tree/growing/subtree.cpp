#include "arbor/tree/growing/subtree.h"

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace arbor::tree {

namespace {

// Below this many cases, waking the threads takes longer than rating the columns.
constexpr std::size_t worth_sharing = 1000;

unsigned int threads_for(const grow_options& options, std::size_t cases) {
  if (cases < worth_sharing) return 1;
  return options.threads == 0 ? machine_threads() : options.threads;
}

}  // namespace

growth::growth(const grow_options& chosen, const impls::w_sequence& cases)
    : options(chosen),
      pool(threads_for(chosen, cases.size())),
      all_weight(static_cast<double>(total_weight(cases))) {}

void growth::add_settled(float weight) {
  const std::lock_guard<std::mutex> lock(mutex);
  settled_weight += static_cast<double>(weight);
  if (options.progress) options.progress(std::min(1.0, settled_weight / all_weight));
}

void subtree::grow(node_cases root) {
  settle({0, std::move(root)}, nullptr);
  while (!open.empty()) settle(take_next(), nullptr);
}

void subtree::grow_in_parallel(node_cases root) {
  const std::size_t small =
      std::max(worth_sharing, root.cases->size() / (std::size_t{16} * shared.pool.size()));
  // Cases with unknown values wait in many branches at once; this bounds the memory they take.
  const std::size_t most_waiting = root.cases->size();
  std::vector<waiting_node> small_nodes;
  std::size_t waiting = 0;
  settle({0, std::move(root)}, &shared.pool);
  while (!open.empty()) {
    waiting_node next = take_next();
    if (next.cases.cases->size() >= small) {
      settle(std::move(next), &shared.pool);
      continue;
    }
    waiting += next.cases.cases->size();
    small_nodes.push_back(std::move(next));
    if (waiting >= most_waiting) {
      grow_all(std::exchange(small_nodes, {}));
      waiting = 0;
    }
  }
  grow_all(std::move(small_nodes));
}

// Grows the subtrees of some nodes in parallel.
void subtree::grow_all(std::vector<waiting_node> roots) {
  std::vector<subtree> subtrees(roots.size(), subtree(shared));
  shared.pool.for_each(subtrees.size(),
                       [&](std::size_t i) { subtrees[i].grow(std::move(roots[i].cases)); });
  for (std::size_t i = 0; i < subtrees.size(); ++i)
    grown.graft(roots[i].node, subtrees[i].take_nodes());
}

subtree::waiting_node subtree::take_next() {
  const open_branch next = std::move(open.back());
  open.pop_back();
  return {next.node, next.parent->take_cases(next.branch, grown.nodes[next.node].share)};
}

// Makes a node a test or a leaf.
void subtree::settle(waiting_node next, thread_pool* pool) {
  const float weight = total_weight(*next.cases.cases);
  grown.nodes[next.node].class_weights =
      present_classes(class_weights(next.cases.rows->class_column(), *next.cases.cases));
  std::optional<rated_test> best;
  if (may_split(next, weight)) {
    gather_rows(next.cases);
    best = best_test(next.cases, grown.nodes[next.node].class_weights, weight, options.min_weight,
                     pool);
  }
  if (best) {
    make_test(std::move(next), weight, *best);
  } else {
    shared.add_settled(weight);
  }
}

bool subtree::may_split(const waiting_node& next, float weight) const {
  const std::size_t classes = grown.nodes[next.node].class_weights.size();
  return classes > 1 && weight >= 2 * options.min_weight && next.cases.depth < options.max_depth;
}

void subtree::make_test(waiting_node next, float weight, const rated_test& test) {
  const auto parent = std::make_shared<node_split>(std::move(next.cases), weight, test);
  tree_node& node = grown.nodes[next.node];
  node.attribute = static_cast<unsigned int>(test.column_index);
  node.split.branches = test.rating.branches;
  node.first_child = static_cast<unsigned int>(grown.nodes.size());
  node.child_count = static_cast<unsigned int>(parent->branches().size());
  grown.cuts[next.node] = cut_of(test.rating);
  std::vector<open_branch> branches;
  for (const node_split::branch& branch : parent->branches()) {
    branches.push_back({grown.nodes.size(), parent, branch});
    grown.add_child(branch.number);
  }
  // The largest branch goes to the bottom of the stack and is processed last, so waiting branches
  // hold at most twice the root's cases.
  std::stable_sort(
      branches.begin(), branches.end(),
      [](const open_branch& a, const open_branch& b) { return a.branch.size > b.branch.size; });
  std::move(branches.begin(), branches.end(), std::back_inserter(open));
}

}  // namespace arbor::tree
