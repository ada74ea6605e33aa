#include "arbor/tree/grower.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

#include "arbor/tree/pruning.h"
#include "arbor/tree/shortest_text.h"

namespace arbor::tree {

namespace {

using impls::column;
using impls::w_sequence;
using code_range = strata::util::pair<unsigned int, unsigned int>;

class growing {
 public:
  growing(const table& training_table, const grow_options& chosen) : training(training_table), options(chosen) {}

  decision_tree grow(const w_sequence& cases) {
    open_node root{0, 0, cases, {}};
    for (const auto& attribute : training.columns) root.ranges.push_back(attribute->get_range());
    all_weight = static_cast<double>(total_weight(cases));
    nodes.emplace_back();
    // Nodes wait on a stack of their own: a tree may be deeper than the machine's.
    open.push_back(std::move(root));
    while (!open.empty()) {
      open_node next = std::move(open.back());
      open.pop_back();
      settle(next);
    }
    return finished();
  }

 private:
  // A node that is neither a leaf nor a test yet.
  struct open_node {
    unsigned int index;
    unsigned int depth;
    w_sequence cases;
    std::vector<code_range> ranges;  // by column: bounds of the known codes among the cases
  };

  // A test that a node may become.
  struct candidate {
    unsigned int column_index;
    column::splitting_desc rating;
  };

  void settle(open_node& node) {
    nodes[node.index].class_weights = class_weights(training.class_column(), node.cases);
    const float weight = total_weight(node.cases);
    std::optional<candidate> best;
    if (may_split(node, weight)) best = best_test(node, weight);
    if (best) split(node, weight, *best);
    if (nodes[node.index].is_leaf()) {
      settled_weight += static_cast<double>(weight);
      if (options.progress) options.progress(std::min(1.0, settled_weight / all_weight));
    }
  }

  bool may_split(const open_node& node, float weight) const {
    const std::vector<float>& classes = nodes[node.index].class_weights;
    const auto present = std::count_if(classes.begin(), classes.end(), [](float w) { return w > 0; });
    return present > 1 && weight >= 2 * options.min_weight && node.depth < options.max_depth;
  }

  std::optional<candidate> best_test(open_node& node, float weight) const {
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
      candidates.push_back(std::move(test));
    }
    const double average = gains / static_cast<double>(candidates.size());
    const candidate* best = nullptr;
    for (const candidate& test : candidates) {
      if (static_cast<double>(test.rating.gain) < average) continue;
      if (best == nullptr || gain_ratio(test) > gain_ratio(*best)) best = &test;
    }
    return best == nullptr ? std::nullopt : std::optional<candidate>(*best);
  }

  static double gain_ratio(const candidate& test) {
    return static_cast<double>(test.rating.gain) / static_cast<double>(test.rating.split_info);
  }

  void split(open_node& node, float weight, const candidate& test) {
    const column& attribute = *training.columns[test.column_index];
    column::partition_desc description;
    test.rating.set_partition_desc(description);
    if (attribute.is_continuous()) description.threshold = cut_threshold(attribute, test.rating);
    std::vector<open_node> children;
    const auto add_branch = [&](unsigned int branch, const w_sequence& cases) {
      tree_node child;
      open_node opened{0, node.depth + 1, {}, node.ranges};
      const std::unique_ptr<w_sequence> taken(attribute.partition(
          cases.begin(), cases.end(), branch, weight, child.share, opened.ranges[test.column_index], description));
      opened.cases = std::move(*taken);
      opened.index = static_cast<unsigned int>(nodes.size());
      child.branch = branch;
      nodes.push_back(std::move(child));
      children.push_back(std::move(opened));
    };
    const auto first_child = static_cast<unsigned int>(nodes.size());
    if (attribute.is_continuous()) {
      add_branch(1, node.cases);
      add_branch(2, node.cases);
    } else {
      for_each_value(attribute, node.cases, add_branch);
    }
    tree_node& parent = nodes[node.index];
    parent.attribute = test.column_index;
    parent.split = std::move(description);
    parent.first_child = first_child;
    parent.child_count = static_cast<unsigned int>(children.size());
    std::move(children.rbegin(), children.rend(), std::back_inserter(open));
  }

  // Calls `add_branch` with each known value among the cases, its cases and the unknown ones: a branch has no use for
  // the others, and there may be as many values as cases.
  template <class AddBranch>
  static void for_each_value(const column& attribute, const w_sequence& cases, AddBranch add_branch) {
    w_sequence by_value = cases;
    const auto code_of = [&](const auto& weighted) { return attribute.get_row_index(weighted.first); };
    std::stable_sort(by_value.begin(), by_value.end(),
                     [&](const auto& a, const auto& b) { return code_of(a) < code_of(b); });
    auto value = std::find_if(by_value.begin(), by_value.end(), [&](const auto& c) { return code_of(c) != 0; });
    const w_sequence unknown(by_value.begin(), value);
    while (value != by_value.end()) {
      const unsigned int code = code_of(*value);
      const auto next = std::find_if(value, by_value.end(), [&](const auto& c) { return code_of(c) != code; });
      w_sequence branch_cases(value, next);
      branch_cases.insert(branch_cases.end(), unknown.begin(), unknown.end());
      add_branch(code, branch_cases);
      value = next;
    }
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
  std::vector<open_node> open;
  double all_weight = 0;
  double settled_weight = 0;
};

}  // namespace

decision_tree grow_tree(const table& training, const w_sequence& cases, const grow_options& options) {
  return growing(training, options).grow(cases);
}

}  // namespace arbor::tree
