#include "arbor/processes/shared_growth.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <map>
#include <queue>
#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/processes/moved_cases.h"
#include "arbor/processes/node_words.h"
#include "arbor/processes/shared_node.h"
#include "arbor/tree/growing/growth.h"
#include "arbor/tree/growing/local_node.h"
#include "arbor/tree/growing/subtree.h"
#include "arbor/tree/pruning.h"

namespace arbor::tree {

namespace {

// A branch that waits to move to a process.
struct waiting_branch {
  open_branch open;
  std::uint64_t cases;  // at most: unknown ones may be left out

  shared_cases take_cases() const {
    return static_cast<shared_split&>(*open.parent).take_own(open.branch);
  }
};

class shared_growth {
 public:
  shared_growth(process_group& of_processes, const table& of_training, const grow_options& chosen)
      : group(of_processes), training(of_training), options(chosen) {}

  grown_nodes grow(shared_cases root) {
    share = (root.all + group.size() - 1) / group.size();
    shared_node first(group, std::move(root), options);
    settle(0, first);
    while (!open.empty()) {
      const open_branch next = std::move(open.back());
      open.pop_back();
      const std::uint64_t cases = next.branch.known_cases + next.parent->unknown_cases();
      if (cases <= share) {
        waiting.push_back({next, cases});
      } else {
        settle(next.node, *next.take());
      }
    }
    grow_waiting();
    return std::move(grown);
  }

 private:
  void settle(std::size_t number, growing_node& node) {
    group.enter(fmt::format("level {}", node.summary().depth));
    if (node.pieces() > 0) node.rate(0);
    std::vector<open_branch> branches = make_node(grown, number, node.summary(), node.split());
    std::move(branches.begin(), branches.end(), std::back_inserter(open));
  }

  // The waiting branches of each process. The largest ones are dealt out first, each to the process
  // that has the fewest cases so far: R. L. Graham, SIAM Journal on Applied Mathematics 17 (1969),
  // 416-429.
  std::vector<std::vector<const waiting_branch*>> dealt_out() const {
    std::vector<const waiting_branch*> largest_first;
    for (const waiting_branch& branch : waiting) largest_first.push_back(&branch);
    std::stable_sort(
        largest_first.begin(), largest_first.end(),
        [](const waiting_branch* a, const waiting_branch* b) { return a->cases > b->cases; });
    std::vector<std::vector<const waiting_branch*>> by_process(group.size());
    using load = std::pair<std::uint64_t, unsigned int>;  // cases and process
    std::priority_queue<load, std::vector<load>, std::greater<>> loads;
    for (unsigned int p = 0; p < group.size(); ++p) loads.push({0, p});
    for (const waiting_branch* branch : largest_first) {
      const auto [cases, process] = loads.top();
      loads.pop();
      by_process[process].push_back(branch);
      loads.push({cases + branch->cases, process});
    }
    return by_process;
  }

  // Grows a branch and prunes it, so that less has to be sent; appends the nodes, and the errors to
  // expect of them, to `words`.
  void grow_branch(std::size_t number, node_cases cases, std::vector<std::uint32_t>& words) {
    const double before = grown_cases;
    grown_cases += static_cast<double>(cases.cases->size());
    grow_options of_branch = options;
    if (options.progress) {
      of_branch.progress = [&](double settled) {
        options.progress((before + settled * (grown_cases - before)) / own_cases);
      };
    }
    grown_nodes part =
        grow_from(std::make_unique<local_node>(std::move(cases), of_branch), of_branch);
    double errors = 0;
    if (options.prune) {
      errors = prune(part.nodes, options.confidence);
      part = reachable_nodes(std::move(part));
    }
    put_number(number, words);
    put_number(errors, words);
    put_nodes(part, words);
  }

  // Moves the branches and grows them; then every process gets all nodes. Most often this takes a
  // single round. It takes more if a process would have more moved cases than two shares.
  void grow_waiting() {
    const std::vector<std::vector<const waiting_branch*>> by_process = dealt_out();
    for (const waiting_branch* branch : by_process[group.rank()])
      own_cases += static_cast<double>(branch->cases);
    std::vector<std::size_t> next(group.size(), 0);
    const auto is_left = [&](unsigned int p) { return next[p] < by_process[p].size(); };
    std::vector<std::uint32_t> words;
    std::size_t moved = 0;
    while (moved < waiting.size()) {
      group.enter("moving");
      std::vector<moving_node> nodes;
      std::vector<const waiting_branch*> own;
      for (unsigned int p = 0; p < group.size(); ++p) {
        std::uint64_t cases = 0;
        while (is_left(p) && (cases == 0 || cases + by_process[p][next[p]]->cases <= 2 * share)) {
          const waiting_branch* const branch = by_process[p][next[p]++];
          cases += branch->cases;
          nodes.push_back({branch->take_cases(), p});
          if (p == group.rank()) own.push_back(branch);
        }
      }
      moved += nodes.size();
      std::vector<node_cases> here = moved_here(group, training, std::move(nodes));
      group.enter("subtrees");
      for (std::size_t i = 0; i < here.size(); ++i)
        grow_branch(own[i]->open.node, std::move(here[i]), words);
    }
    group.enter("gathering the tree");
    const std::vector<std::uint32_t> of_all = group.gathered(words);
    std::map<std::size_t, double> pruned;
    for (const std::uint32_t* word = of_all.data(); word != of_all.data() + of_all.size();) {
      const auto number = take_number<std::size_t>(word);
      pruned[number] = take_number<double>(word);
      grown.graft(number, take_nodes(word));
    }
    if (options.prune) prune(grown.nodes, options.confidence, pruned);
  }

  process_group& group;
  const table& training;
  grow_options options;
  std::uint64_t share = 0;  // cases
  double own_cases = 0;     // of the branches that this process grows
  double grown_cases = 0;   // of those that it has begun
  grown_nodes grown;
  std::vector<open_branch> open;
  std::vector<waiting_branch> waiting;
};

// As codes_among, for the cases of all processes.
occurring_codes codes_among_all(process_group& group, const table& training,
                                const impls::w_sequence& cases) {
  std::vector<std::uint64_t> left_out{training.cases.size() - cases.size()};
  group.add_up(left_out);
  if (left_out[0] == 0) return nullptr;
  return [&group, &training, &cases](std::size_t column) {
    std::vector<std::uint32_t> occurs(training.columns[column]->get_distinct(), 0);
    impls::with_codes(*training.columns[column], [&](auto code_of) {
      for (const auto& weighted : cases) occurs[code_of(weighted.first)] = 1;
    });
    group.take_greatest(occurs);
    return std::vector<bool>(occurs.begin(), occurs.end());
  };
}

}  // namespace

decision_tree grow_shared_tree(process_group& group, const table& training,
                               const impls::w_sequence& cases, const grow_options& options) {
  if (group.size() == 1) {
    group.enter("subtrees");
    return grow_tree(training, cases, options);
  }
  group.enter("level 0");
  shared_cases root = shared_root(group, training, cases);
  const std::uint64_t rows = root.all;
  grown_nodes grown = shared_growth(group, training, options).grow(std::move(root));
  return finished_tree(training, rows, std::move(grown), codes_among_all(group, training, cases),
                       options);
}

}  // namespace arbor::tree
