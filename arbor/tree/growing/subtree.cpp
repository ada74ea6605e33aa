#include "arbor/tree/growing/subtree.h"

#include <algorithm>
#include <atomic>
#include <iterator>
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

growth::growth(const grow_options& chosen, const node_summary& root)
    : options(chosen),
      pool(threads_for(chosen, root.cases)),
      all_weight(static_cast<double>(root.weight)) {}

void growth::add_settled(float weight) {
  const std::lock_guard<std::mutex> lock(mutex);
  settled_weight += static_cast<double>(weight);
  if (options.progress) options.progress(std::min(1.0, settled_weight / all_weight));
}

std::vector<open_branch> make_node(grown_nodes& grown, std::size_t number,
                                   const node_summary& summary,
                                   const std::shared_ptr<node_split>& split) {
  grown.nodes[number].class_weights = summary.class_weights;
  std::vector<open_branch> branches;
  if (split == nullptr) return branches;
  const rated_test& test = split->test();
  tree_node& made = grown.nodes[number];
  made.attribute = static_cast<unsigned int>(test.column_index);
  made.split.branches = test.rating.branches;
  made.first_child = static_cast<unsigned int>(grown.nodes.size());
  made.child_count = static_cast<unsigned int>(split->branches().size());
  grown.cuts[number] = cut_of(test.rating);
  for (const node_split::branch& branch : split->branches()) {
    branches.push_back({grown.nodes.size(), split, branch});
    grown.add_child(branch.number, branch.share);
  }
  std::stable_sort(branches.begin(), branches.end(),
                   [](const open_branch& a, const open_branch& b) {
                     return a.branch.known_cases > b.branch.known_cases;
                   });
  return branches;
}

void subtree::grow(growing_node& root) {
  settle(0, root);
  while (!open.empty()) {
    const open_branch next = std::move(open.back());
    open.pop_back();
    settle(next.node, *next.take());
  }
}

void subtree::settle(std::size_t number, growing_node& node) {
  for (std::size_t i = 0; i < node.pieces(); ++i) {
    if (node.summary().cases >= worth_sharing) shared.add_settled(0);
    node.rate(i);
  }
  const std::shared_ptr<node_split> split = node.split();
  if (split == nullptr) shared.add_settled(node.summary().weight);
  std::vector<open_branch> branches = make_node(grown, number, node.summary(), split);
  std::move(branches.begin(), branches.end(), std::back_inserter(open));
}

parallel_subtree::parallel_subtree(growth& of_tree, std::size_t root_cases)
    : shared(of_tree),
      small(std::max(worth_sharing, root_cases / (std::size_t{16} * shared.pool.size()))) {}

void parallel_subtree::grow(const std::shared_ptr<growing_node>& root) {
  tasks.add([this, root] { settle(0, root); });
  tasks.run(shared.pool);
}

void parallel_subtree::settle(std::size_t number, const std::shared_ptr<growing_node>& node) {
  if (node->summary().cases < small) {
    subtree part(shared);
    part.grow(*node);
    const std::lock_guard<std::mutex> lock(mutex);
    grown.graft(number, part.take_nodes());
    return;
  }
  if (node->pieces() == 0) {
    conclude(number, *node);
    return;
  }
  const auto unrated = std::make_shared<std::atomic<std::size_t>>(node->pieces());
  for (std::size_t i = 0; i < node->pieces(); ++i) {
    tasks.add([=] {
      shared.add_settled(0);
      node->rate(i);
      if (--*unrated == 0) conclude(number, *node);
    });
  }
}

void parallel_subtree::conclude(std::size_t number, growing_node& node) {
  const std::shared_ptr<node_split> split = node.split();
  if (split == nullptr) shared.add_settled(node.summary().weight);
  std::unique_lock<std::mutex> lock(mutex);
  const std::vector<open_branch> branches = make_node(grown, number, node.summary(), split);
  lock.unlock();
  for (const open_branch& next : branches)
    tasks.add([this, next] { settle(next.node, next.take()); });
}

grown_nodes grow_from(std::unique_ptr<growing_node> root, const grow_options& options) {
  growth shared(options, root->summary());
  if (shared.pool.size() == 1) {
    subtree all(shared);
    all.grow(*root);
    return all.take_nodes();
  }
  parallel_subtree all(shared, root->summary().cases);
  all.grow(std::move(root));
  return all.take_nodes();
}

}  // namespace arbor::tree
