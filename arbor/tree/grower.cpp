#include "arbor/tree/grower.h"

#include <algorithm>
#include <iterator>
#include <mutex>
#include <optional>
#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/crew.h"
#include "arbor/tree/division.h"
#include "arbor/tree/pruning.h"

namespace arbor::tree {

namespace {

using impls::column;
using impls::w_sequence;

constexpr std::size_t worth_sharing = 1000;  // cases; fewer are rated faster than threads are woken

// What all parts of a growing tree share.
class growth {
 public:
  growth(const grow_options& chosen, const w_sequence& cases)
      : options(chosen),
        workers(cases.size() < worth_sharing ? 1
                : chosen.threads == 0        ? machine_threads()
                                             : chosen.threads),
        all_weight(static_cast<double>(total_weight(cases))) {}

  // Tells how much of the cases has come to leaves.
  void settled(float weight) {
    const std::lock_guard<std::mutex> lock(mutex);
    settled_weight += static_cast<double>(weight);
    if (options.progress) options.progress(std::min(1.0, settled_weight / all_weight));
  }

  const grow_options& options;
  crew workers;

 private:
  const double all_weight;
  std::mutex mutex;
  double settled_weight = 0;
};

// A test that a node may become.
struct candidate {
  std::size_t column_index;
  column::splitting_desc rating;
};

// The weight of a node's cases, and of each class among them, entry c that of the class with code c
// + 1; both added up in double, so that many light cases count for what they are.
struct node_weight {
  float all;
  std::vector<float> classes;
};

node_weight weigh_cases(const column& class_column, const w_sequence& cases) {
  double all = 0;
  std::vector<double> classes(class_column.get_distinct(), 0.0);
  impls::with_codes(class_column, [&](auto class_of) {
    for (const auto& [row, weight] : cases) {
      all += static_cast<double>(weight);
      classes[class_of(row)] += static_cast<double>(weight);
    }
  });
  return {static_cast<float>(all), {classes.begin() + 1, classes.end()}};
}

// The best test of a node, if there is any. What it finds out about the ranges of its codes is
// noted there.
class test_choice {
 public:
  // `workers`, null for none, rate several columns at once.
  test_choice(node_cases& node, float node_weight, float least_branch, crew* workers)
      : rated(node), weight(node_weight), min_weight(least_branch) {
    for (std::size_t i = 0; i < rated.rows->columns().size(); ++i) {
      const column& attribute = *rated.rows->columns()[i];
      if (attribute.is_discrete() || attribute.is_continuous()) candidates.push_back({i, {}});
    }
    const auto rate = [this](std::size_t i) { rate_candidate(candidates[i]); };
    if (workers != nullptr) {
      workers->each(candidates.size(), rate);
    } else {
      for (std::size_t i = 0; i < candidates.size(); ++i) rate(i);
    }
  }

  // That with the best gain ratio among those whose gain is at least the average of all that split.
  std::optional<candidate> best() const {
    double gains = 0;
    std::size_t splits = 0;
    for (const candidate& test : candidates) {
      if (!(test.rating.gain > 0)) continue;
      gains += static_cast<double>(test.rating.gain);
      ++splits;
    }
    const double average = gains / static_cast<double>(splits);
    std::optional<candidate> result;
    for (const candidate& test : candidates) {
      if (!(test.rating.gain > 0) || static_cast<double>(test.rating.gain) < average) continue;
      if (!result || gain_ratio(test) > gain_ratio(*result)) result = test;
    }
    return result;
  }

 private:
  void rate_candidate(candidate& test) {
    const column& attribute = *rated.rows->columns()[test.column_index];
    code_range& range = rated.ranges[test.column_index];
    // Looking at every case pays when the measure would look at more codes than there are cases.
    const bool loose = range.second - range.first > rated.cases->size();
    if (loose) range = occurring_range(attribute, *rated.cases);
    // A measure that is to copy the cases leaves them alone: each attribute is rated on them in the
    // same order, so that its rating does not depend on the others.
    auto& unchanged = const_cast<w_sequence&>(*rated.cases);
    attribute.quality_measure(&rated.rows->class_column(), weight, &unchanged, range, min_weight,
                              nullptr, test.rating, true);
  }

  static double gain_ratio(const candidate& test) {
    return static_cast<double>(test.rating.gain) / static_cast<double>(test.rating.split_info);
  }

  node_cases& rated;
  float weight;
  float min_weight;
  std::vector<candidate> candidates;
};

// A part of the tree: what grows from one node.
class subtree {
 public:
  explicit subtree(growth& grown) : whole(grown), options(grown.options), nodes(1) {}

  // Grows from node 0. `root` are its cases.
  void grow(node_cases root) {
    settle(0, std::move(root), nullptr);
    // Branches wait on a stack of their own: a tree may be deeper than the machine's.
    while (!open.empty()) {
      waiting_branch next = take_next();
      settle(next.node, std::move(next.cases), nullptr);
    }
  }

  // The same by all of the crew: the columns of large nodes are rated side by side, and then the
  // subtrees of small ones are grown side by side.
  void grow_together(node_cases root) {
    crew& workers = whole.workers;
    const std::size_t small =
        std::max(worth_sharing, root.cases->size() / (std::size_t{16} * workers.size()));
    // No more cases wait than there are: unknown ones wait in many branches at once.
    const std::size_t most_waiting = root.cases->size();
    std::vector<waiting_branch> small_branches;
    std::size_t waiting = 0;
    settle(0, std::move(root), &workers);
    while (!open.empty()) {
      waiting_branch next = take_next();
      if (next.cases.cases->size() >= small) {
        settle(next.node, std::move(next.cases), &workers);
        continue;
      }
      waiting += next.cases.cases->size();
      small_branches.push_back(std::move(next));
      if (waiting >= most_waiting) {
        grow_all(std::exchange(small_branches, {}));
        waiting = 0;
      }
    }
    grow_all(std::move(small_branches));
  }

  std::vector<tree_node> take_nodes() { return std::move(nodes); }

 private:
  // A node whose cases are still with its parent.
  struct open_branch {
    std::size_t node;
    std::shared_ptr<const division> parent;
    division::branch number;
  };
  // One whose cases have been taken.
  struct waiting_branch {
    std::size_t node;
    node_cases cases;
  };

  // Grows the subtrees of branches side by side.
  void grow_all(std::vector<waiting_branch> branches) {
    std::vector<subtree> subtrees(branches.size(), subtree(whole));
    whole.workers.each(subtrees.size(),
                       [&](std::size_t i) { subtrees[i].grow(std::move(branches[i].cases)); });
    for (std::size_t i = 0; i < subtrees.size(); ++i)
      graft(branches[i].node, std::move(subtrees[i].nodes));
  }

  waiting_branch take_next() {
    const open_branch next = std::move(open.back());
    open.pop_back();
    return {next.node, next.parent->cases_of(next.number, nodes[next.node].share)};
  }

  // Makes a test or a leaf of a node.
  void settle(std::size_t node, node_cases cases, crew* workers) {
    node_weight weight = weigh_cases(cases.rows->class_column(), *cases.cases);
    nodes[node].class_weights = std::move(weight.classes);
    std::optional<candidate> best;
    if (may_split(node, cases, weight.all)) {
      bring_together(cases);
      best = test_choice(cases, weight.all, options.min_weight, workers).best();
    }
    if (best) {
      divide(node, std::move(cases), weight.all, *best);
    } else {
      whole.settled(weight.all);
    }
  }

  bool may_split(std::size_t node, const node_cases& cases, float weight) const {
    const std::vector<float>& classes = nodes[node].class_weights;
    const auto present =
        std::count_if(classes.begin(), classes.end(), [](float w) { return w > 0; });
    return present > 1 && weight >= 2 * options.min_weight && cases.depth < options.max_depth;
  }

  // Extracts the cases of a node that lie scattered over many rows: the columns are read several
  // times for each node below, and each read of a few bytes far from the next one takes the time of
  // a whole cache line.
  static void bring_together(node_cases& node) {
    constexpr std::size_t many_rows = 1U << 15U;  // of which a few columns fill a core's own cache
    constexpr std::size_t scattered = 4;          // rows to a case
    constexpr std::size_t worth_it = 512;         // cases
    const w_sequence& cases = *node.cases;
    if (node.rows->size() < many_rows || cases.size() < worth_it) return;
    if (node.rows->size() / cases.size() < scattered) return;
    auto numbered = std::make_shared<w_sequence>(cases);
    for (std::size_t i = 0; i < cases.size(); ++i)
      (*numbered)[i].first = static_cast<unsigned int>(i);
    node.rows = std::make_shared<const case_rows>(*node.rows, cases);
    node.cases = std::move(numbered);
  }

  // Makes a test of a node, and puts its branches on the stack.
  void divide(std::size_t node, node_cases cases, float weight, const candidate& test) {
    const column& attribute = *cases.rows->columns()[test.column_index];
    column::partition_desc split;
    test.rating.set_partition_desc(split);
    // The threshold that it tells may lie outside of the cut; see cut_threshold.
    if (attribute.is_continuous()) split.threshold = cut_threshold(attribute, test.rating);
    const auto parent =
        std::make_shared<const division>(std::move(cases), weight, test.column_index, split);

    std::vector<open_branch> branches;
    tree_node& tested = nodes[node];
    tested.attribute = static_cast<unsigned int>(test.column_index);
    tested.split = std::move(split);
    tested.first_child = static_cast<unsigned int>(nodes.size());
    tested.child_count = static_cast<unsigned int>(parent->branches().size());
    for (const division::branch& branch : parent->branches()) {
      branches.push_back({nodes.size(), parent, branch});
      nodes.emplace_back().branch = branch.number;
    }
    // The largest comes last, when it is the only one that still needs the cases of its parent: of
    // all that wait, only smaller ones, of at most half the cases each, have parents that wait too,
    // so that twice the cases are kept at most.
    std::stable_sort(branches.begin(), branches.end(),
                     [](const open_branch& a, const open_branch& b) {
                       return a.number.size() > b.number.size();
                     });
    std::move(branches.begin(), branches.end(), std::back_inserter(open));
  }

  // Puts the nodes of another part in the place of one node.
  void graft(std::size_t node, std::vector<tree_node> grown) {
    const std::size_t before_second = nodes.size() - 1;  // its root stands elsewhere
    for (tree_node& moved : grown) moved.first_child += static_cast<unsigned int>(before_second);
    grown.front().branch = nodes[node].branch;
    grown.front().share = nodes[node].share;
    nodes[node] = std::move(grown.front());
    nodes.insert(nodes.end(), std::make_move_iterator(grown.begin() + 1),
                 std::make_move_iterator(grown.end()));
  }

  growth& whole;
  const grow_options& options;
  std::vector<tree_node> nodes;  // their attributes are indices of the table's columns
  std::vector<open_branch> open;
};

// A tree of such nodes, with those columns of the table that they test.
decision_tree tree_of(const table& training, std::vector<tree_node> nodes) {
  decision_tree tree;
  tree.nodes = without_unreachable(std::move(nodes));
  tree.class_column.reset(training.class_column().clone(true));
  std::vector<unsigned int> attribute_of(training.columns.size(), tree_node::no_attribute);
  for (const tree_node& node : tree.nodes) {
    if (!node.is_leaf()) attribute_of[node.attribute] = 0;
  }
  for (unsigned int i = 0; i < attribute_of.size(); ++i) {
    if (attribute_of[i] == tree_node::no_attribute) continue;
    attribute_of[i] = static_cast<unsigned int>(tree.attributes.size());
    std::unique_ptr<column> attribute(training.columns[i]->clone(true));
    tree.attributes.push_back(std::move(attribute));
  }
  for (tree_node& node : tree.nodes) {
    if (!node.is_leaf()) node.attribute = attribute_of[node.attribute];
  }
  return tree;
}

}  // namespace

decision_tree grow_tree(const table& training, const w_sequence& cases,
                        const grow_options& options) {
  growth grown(options, cases);
  // The caller keeps the cases of the root.
  node_cases root{
      std::make_shared<const case_rows>(training), {std::shared_ptr<void>(), &cases}, {}, 0};
  // This also puts the domains in order, before several threads ask them.
  for (const auto& attribute : training.columns) root.ranges.push_back(attribute->get_range());
  subtree all(grown);
  if (grown.workers.size() == 1) {
    all.grow(std::move(root));
  } else {
    all.grow_together(std::move(root));
  }
  std::vector<tree_node> nodes = all.take_nodes();
  if (options.prune) prune(nodes, options.confidence);
  return tree_of(training, std::move(nodes));
}

}  // namespace arbor::tree
