#include "arbor/report/tree_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>
#include <vector>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/report/node_text.h"
#include "arbor/report/node_walk.h"
#include "arbor/report/text_table.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/attribute_importance.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

// "humidity <= 70"
std::string branch_text(column_texts& texts, const decision_tree& tree, const tree_node& test,
                        const tree_node& child) {
  const impls::column& tested = *tree.attributes[test.attribute];
  const std::string& name = texts.name(tested);
  const std::string value = branch_value(texts, tested, child);
  if (!tested.is_continuous()) return name + " = " + value;
  return name + " " + value + " " + test_threshold(tested, test);
}

// The bars in front of a line. They end at some depth, or the text of a deep tree would grow with
// the square of its depth.
std::string indentation(std::size_t level) {
  constexpr std::size_t most_indented = 40;
  std::string bars;
  for (std::size_t i = 1; i < std::min(level, most_indented); ++i) bars += "|   ";
  return level > most_indented ? bars + fmt::format("(depth {}) ", level) : bars;
}

// By node: how many leaves are below it. A leaf counts itself.
std::vector<std::size_t> leaves_below(const decision_tree& tree) {
  std::vector<std::size_t> leaves(tree.nodes.size(), 0);
  for (std::size_t i = tree.nodes.size(); i-- > 0;) {
    const tree_node& node = tree.nodes[i];
    if (node.is_leaf()) leaves[i] = 1;
    for (unsigned int child = 0; child < node.child_count; ++child)
      leaves[i] += leaves[node.first_child + child];
  }
  return leaves;
}

}  // namespace

void write_tree_text(std::ostream& out, const decision_tree& tree, const tree_excerpt& excerpt,
                     std::size_t width) {
  const std::vector<std::size_t> parents = node_parents(tree);
  const std::vector<std::size_t> leaves = leaves_below(tree);
  const std::vector<std::size_t> predicted = predicted_classes(tree);
  column_texts texts = shown_texts(width);
  std::size_t lines = 0;
  for_each_node(tree, excerpt.depth, [&](std::size_t index, std::size_t level) {
    const tree_node& node = tree.nodes[index];
    const bool is_open = !node.is_leaf() && level < excerpt.depth;
    if (level == 0 && is_open) return;
    if (++lines > excerpt.lines) return;
    if (level > 0)
      out << indentation(level) << branch_text(texts, tree, tree.nodes[parents[index]], node);
    const char* separator = level > 0 ? ": " : "";
    if (node.is_leaf()) {
      out << separator << leaf_text(texts, tree, node, predicted[index]) << '\n';
    } else if (is_open) {
      out << fmt::format(" [{}]\n", index);
    } else {
      out << fmt::format("{}... {} below [{}]\n", separator,
                         counted(leaves[index], "leaf", "leaves"), index);
    }
  });
  if (lines > excerpt.lines)
    out << fmt::format("... and {}\n", counted(lines - excerpt.lines, "more line"));
}

tree_excerpt excerpt_of_lines(const decision_tree& tree, std::size_t lines) {
  std::vector<std::size_t> nodes_at(2, 0);  // by depth
  for (const std::size_t depth : node_depths(tree)) {
    if (depth >= nodes_at.size()) nodes_at.resize(depth + 1, 0);
    ++nodes_at[depth];
  }
  std::size_t depth = 1;
  std::size_t used = nodes_at[1];
  while (depth + 1 < nodes_at.size() && used + nodes_at[depth + 1] <= lines)
    used += nodes_at[++depth];
  return {depth, lines};
}

std::string size_line(const decision_tree& tree) {
  const tree_size size = size_of(tree);
  return fmt::format("{}, {}, depth {}", counted(size.nodes, "node"),
                     counted(size.leaves, "leaf", "leaves"), size.depth);
}

std::string description(const decision_tree& tree, std::size_t width) {
  std::string lines = fmt::format("class {}: {}\n", in_quotes(tree.class_column->get_name(), width),
                                  size_line(tree));
  if (!tree.origin) return lines;
  const tree_origin& origin = *tree.origin;
  lines += fmt::format("grown on {} of {} with minimum weight {}", counted(origin.rows, "row"),
                       shown(origin.table, width), shortest_text(origin.min_weight));
  if (origin.max_depth != std::numeric_limits<unsigned int>::max())
    lines += fmt::format(", at most {}", counted(origin.max_depth, "level"));
  return lines + (origin.pruned ? ", confidence " + shortest_text(origin.confidence) + '\n'
                                : ", not pruned\n");
}

void write_importance(std::ostream& out, const decision_tree& tree, std::size_t width) {
  const std::vector<double> importance = importance_of_attributes(tree);
  const double sum = std::accumulate(importance.begin(), importance.end(), 0.0);
  std::vector<std::size_t> order(importance.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&](std::size_t a, std::size_t b) { return importance[a] > importance[b]; });
  const auto row = [&](std::size_t r) -> std::vector<std::string> {
    if (r == 0) return {"attribute", "importance", "share"};
    const std::size_t i = order[r - 1];
    return {shown(tree.attributes[i]->get_name(), width), fmt::format("{:.4f}", importance[i]),
            fmt::format("{:.1f}%", sum > 0 ? 100 * importance[i] / sum : 0)};
  };
  write_aligned(out, "lrr", 1 + order.size(), row);
}

}  // namespace arbor::tree
