#include "arbor/report/exports/path_rules.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "arbor/report/node_walk.h"
#include "arbor/report/tree_report.h"

namespace arbor::tree {

namespace {

// The conditions on the way to the node that is visited.
class present_path {
 public:
  explicit present_path(const decision_tree& of_tree)
      : tree(of_tree), parents(node_parents(of_tree)), places(of_tree.attributes.size(), none) {}

  // Goes to a node, given with its depth, from the one before it in the order of visits.
  void go_to(std::size_t node, std::size_t depth) {
    while (depth > 0 && steps.size() >= depth) leave();
    if (depth > 0) enter(node);
  }

  // Whether known values may lead here.
  bool is_possible() const { return contradictions == 0; }
  bool is_full() const { return rule.conditions.size() >= most_conditions; }

  const path_rule& rule_to(std::size_t node) {
    rule.node = node;
    return rule;
  }

  // Lets the rules of the nodes below start from this node.
  void start_from(std::size_t node) {
    for (const path_condition& condition : rule.conditions) places[condition.attribute] = none;
    starts.push_back({steps.size(), std::exchange(rule, {node, {}, node})});
  }

 private:
  static constexpr std::size_t none = std::numeric_limits<std::size_t>::max();

  // A branch that the path takes.
  struct step {
    path_condition before;  // the condition on the attribute before it
    bool is_first;          // whether there was none
    bool contradicts;
  };
  struct saved_rule {
    std::size_t depth;
    path_rule rule;
  };

  void enter(std::size_t node) {
    const tree_node& child = tree.nodes[node];
    const tree_node& test = tree.nodes[parents[node]];
    std::size_t& place = places[test.attribute];
    const bool is_first = place == none;
    if (is_first) {
      place = rule.conditions.size();
      rule.conditions.push_back({test.attribute});
    }
    path_condition& condition = rule.conditions[place];
    steps.push_back({condition, is_first, false});
    const impls::column& tested = *tree.attributes[test.attribute];
    if (!tested.is_continuous()) {
      steps.back().contradicts = !is_first && condition.value != child.branch;
      contradictions += steps.back().contradicts ? 1 : 0;
      condition.value = child.branch;
      return;
    }
    const unsigned int threshold = tested.get_index(test.split.threshold.c_str());
    if (child.branch != 1) {
      condition.above = std::max(condition.above, threshold);
    } else if (condition.up_to == 0 || threshold < condition.up_to) {
      condition.up_to = threshold;
    }
  }

  void leave() {
    if (!starts.empty() && starts.back().depth == steps.size()) {
      rule = std::move(starts.back().rule);
      starts.pop_back();
      for (std::size_t i = 0; i < rule.conditions.size(); ++i)
        places[rule.conditions[i].attribute] = i;
    }
    const step& last = steps.back();
    contradictions -= last.contradicts ? 1 : 0;
    std::size_t& place = places[last.before.attribute];
    if (last.is_first) {
      place = none;
      rule.conditions.pop_back();
    } else {
      rule.conditions[place] = last.before;
    }
    steps.pop_back();
  }

  const decision_tree& tree;
  const std::vector<std::size_t> parents;
  std::vector<std::size_t> places;  // by attribute, of its condition in the rule
  std::vector<step> steps;
  std::vector<saved_rule> starts;
  path_rule rule{0, {}, 0};
  std::size_t contradictions = 0;
};

}  // namespace

void for_each_rule(const decision_tree& tree, const std::function<void(const path_rule&)>& visit) {
  present_path path(tree);
  for_each_node(tree, whole_depth, [&](std::size_t node, std::size_t depth) {
    path.go_to(node, depth);
    if (!path.is_possible()) return;
    if (tree.nodes[node].is_leaf()) {
      visit(path.rule_to(node));
    } else if (path.is_full()) {
      visit(path.rule_to(node));
      path.start_from(node);
    }
  });
}

}  // namespace arbor::tree
