#include "arbor/tree/grower.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "arbor/tree/pruning.h"
#include "arbor/tree/shortest_text.h"

namespace arbor::tree {

namespace {

using impls::column;
using impls::w_sequence;
using code_range = strata::util::pair<unsigned int, unsigned int>;

// The cases of a test, from which those of its branches are taken when their turn comes, and not before: the unknown
// ones go down every branch, and there may be as many branches as cases.
struct divided_node {
  unsigned int column_index;
  column::partition_desc split;
  float weight;
  unsigned int depth;
  std::vector<code_range> ranges;  // by column: bounds of the known codes among the cases
  w_sequence cases;                // of a discrete test the unknown ones first, then value by value
  std::size_t unknown_count = 0;
};

class growing {
 public:
  growing(const table& training_table, const grow_options& chosen) : training(training_table), options(chosen) {}

  decision_tree grow(const w_sequence& cases) {
    node_cases root{0, 0, cases, {}};
    for (const auto& attribute : training.columns) root.ranges.push_back(attribute->get_range());
    all_weight = static_cast<double>(total_weight(cases));
    nodes.emplace_back();
    settle(std::move(root));
    // Branches wait on a stack of their own: a tree may be deeper than the machine's.
    while (!open.empty()) {
      const branch next = std::move(open.back());
      open.pop_back();
      settle(cases_of(next));
    }
    return finished();
  }

 private:
  struct node_cases {
    unsigned int index;  // of the node
    unsigned int depth;
    w_sequence cases;
    std::vector<code_range> ranges;
  };

  // A node whose cases are still with its parent.
  struct branch {
    unsigned int index;
    std::shared_ptr<const divided_node> parent;
    std::size_t first_case;  // of a discrete test: those of its value, from this one
    std::size_t end_case;    // to before this one; of a continuous one both only tell how many there are
  };

  // A test that a node may become.
  struct candidate {
    unsigned int column_index;
    column::splitting_desc rating;
  };

  void settle(node_cases node) {
    nodes[node.index].class_weights = class_weights(training.class_column(), node.cases);
    const float weight = total_weight(node.cases);
    std::optional<candidate> best;
    if (may_split(node, weight)) best = best_test(node, weight);
    if (best) {
      divide(std::move(node), weight, *best);
    } else {
      settled_weight += static_cast<double>(weight);
      if (options.progress) options.progress(std::min(1.0, settled_weight / all_weight));
    }
  }

  bool may_split(const node_cases& node, float weight) const {
    const std::vector<float>& classes = nodes[node.index].class_weights;
    const auto present = std::count_if(classes.begin(), classes.end(), [](float w) { return w > 0; });
    return present > 1 && weight >= 2 * options.min_weight && node.depth < options.max_depth;
  }

  std::optional<candidate> best_test(node_cases& node, float weight) const {
    std::vector<candidate> candidates;
    double gains = 0;
    for (unsigned int i = 0; i < training.columns.size(); ++i) {
      column& attribute = *training.columns[i];
      if (!attribute.is_discrete() && !attribute.is_continuous()) continue;
      // Looking at every case pays when the measure would look at more codes than there are cases.
      const bool loose = node.ranges[i].second - node.ranges[i].first > node.cases.size();
      if (loose) node.ranges[i] = occurring_range(attribute, node.cases);
      candidate test{i, {}};
      // Each attribute is rated on the cases in the same order, so that its rating does not depend on the others.
      attribute.quality_measure(&training.class_column(), weight, &node.cases, node.ranges[i], options.min_weight,
                                nullptr, test.rating, true);
      if (!(test.rating.gain > 0)) continue;
      gains += static_cast<double>(test.rating.gain);
      candidates.push_back(test);
    }
    const double average = gains / static_cast<double>(candidates.size());
    std::optional<candidate> best;
    for (const candidate& test : candidates) {
      if (static_cast<double>(test.rating.gain) < average) continue;
      if (!best || gain_ratio(test) > gain_ratio(*best)) best = test;
    }
    return best;
  }

  static double gain_ratio(const candidate& test) {
    return static_cast<double>(test.rating.gain) / static_cast<double>(test.rating.split_info);
  }

  // Makes a test of a node, and puts its branches on the stack.
  void divide(node_cases node, float weight, const candidate& test) {
    const column& attribute = *training.columns[test.column_index];
    auto parent = std::make_shared<divided_node>();
    parent->column_index = test.column_index;
    test.rating.set_partition_desc(parent->split);
    // The threshold that it tells may lie outside of the cut; see cut_threshold.
    if (attribute.is_continuous()) parent->split.threshold = cut_threshold(attribute, test.rating);
    parent->weight = weight;
    parent->depth = node.depth;
    parent->ranges = std::move(node.ranges);
    parent->cases = std::move(node.cases);

    std::vector<branch> branches;
    const auto first_child = static_cast<unsigned int>(nodes.size());
    const auto add_branch = [&](unsigned int number, std::size_t first_case, std::size_t end_case) {
      branches.push_back({static_cast<unsigned int>(nodes.size()), parent, first_case, end_case});
      nodes.emplace_back().branch = number;
    };
    if (attribute.is_continuous()) {
      const unsigned int threshold = attribute.get_index(parent->split.threshold.c_str());
      const auto goes_low = [&](const auto& weighted) { return attribute.get_row_index(weighted.first) <= threshold; };
      const auto low = static_cast<std::size_t>(std::count_if(parent->cases.begin(), parent->cases.end(), goes_low));
      add_branch(1, 0, low);
      add_branch(2, low, parent->cases.size());
    } else {
      for_each_value(attribute, *parent, add_branch);
    }
    tree_node& tested = nodes[node.index];
    tested.attribute = test.column_index;
    tested.split = parent->split;
    tested.first_child = first_child;
    tested.child_count = static_cast<unsigned int>(branches.size());
    // The largest comes last, when it is the only one that still needs the cases of its parent: of all that wait, only
    // smaller ones, of at most half the cases each, have parents that wait too, so that twice the cases are kept at
    // most.
    std::stable_sort(branches.begin(), branches.end(), [](const branch& a, const branch& b) {
      return a.end_case - a.first_case > b.end_case - b.first_case;
    });
    std::move(branches.begin(), branches.end(), std::back_inserter(open));
  }

  // Puts the cases in the order of their values and calls `add_branch` with each known value among them and the bounds
  // of its cases.
  template <class AddBranch>
  static void for_each_value(const column& attribute, divided_node& node, AddBranch add_branch) {
    const auto code_of = [&](const auto& weighted) { return attribute.get_row_index(weighted.first); };
    const auto before = [&](const auto& a, const auto& b) { return code_of(a) < code_of(b); };
    w_sequence& cases = node.cases;
    std::stable_sort(cases.begin(), cases.end(), before);
    for (std::size_t first = 0, end = 0; first < cases.size(); first = end) {
      const unsigned int code = code_of(cases[first]);
      while (end < cases.size() && code_of(cases[end]) == code) ++end;
      if (code == 0) {
        node.unknown_count = end;
      } else {
        add_branch(code, first, end);
      }
    }
  }

  // Takes the cases of a branch, and notes its share.
  node_cases cases_of(const branch& taken) {
    const divided_node& parent = *taken.parent;
    const column& attribute = *training.columns[parent.column_index];
    w_sequence of_value;  // of a discrete test: the other values' cases would be passed over
    if (!attribute.is_continuous()) {
      of_value.insert(of_value.end(), parent.cases.begin() + static_cast<std::ptrdiff_t>(taken.first_case),
                      parent.cases.begin() + static_cast<std::ptrdiff_t>(taken.end_case));
      of_value.insert(of_value.end(), parent.cases.begin(),
                      parent.cases.begin() + static_cast<std::ptrdiff_t>(parent.unknown_count));
    }
    const w_sequence& from = attribute.is_continuous() ? parent.cases : of_value;
    node_cases result{taken.index, parent.depth + 1, {}, parent.ranges};
    tree_node& node = nodes[taken.index];
    const std::unique_ptr<w_sequence> cases(attribute.partition(from.begin(), from.end(), node.branch, parent.weight,
                                                                node.share, result.ranges[parent.column_index],
                                                                parent.split));
    result.cases = std::move(*cases);
    drop_slivers(result.cases);
    return result;
  }

  // Leaves out what has become a small part of a case: it would take the time and the room of a whole one, times as
  // many as there are branches on the way, and its weight might end as 0.
  void drop_slivers(w_sequence& cases) const {
    constexpr float least_part = 1.0F / 1024;
    const auto is_sliver = [&](const auto& weighted) {
      return weighted.second < least_part * training.cases[weighted.first].second || !(weighted.second > 0);
    };
    cases.erase(std::remove_if(cases.begin(), cases.end(), is_sliver), cases.end());
  }

  decision_tree finished() {
    if (options.prune) prune(nodes, options.confidence);
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
      tree.attributes.emplace_back(training.columns[i]->clone(true));
    }
    for (tree_node& node : tree.nodes) {
      if (!node.is_leaf()) node.attribute = attribute_of[node.attribute];
    }
    return tree;
  }

  const table& training;
  const grow_options& options;
  std::vector<tree_node> nodes;  // their attributes are indices of the table's columns until the tree is finished
  std::vector<branch> open;
  double all_weight = 0;
  double settled_weight = 0;
};

}  // namespace

decision_tree grow_tree(const table& training, const w_sequence& cases, const grow_options& options) {
  return growing(training, options).grow(cases);
}

}  // namespace arbor::tree
