#include "arbor/report/tree_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>
#include <vector>

#include "arbor/csv/message_text.h"
#include "arbor/report/json_writer.h"
#include "arbor/report/text_table.h"
#include "arbor/table/value_text.h"
#include "arbor/table/table.h"

namespace arbor::tree {

namespace {

using impls::column;

// A weight to two decimals at most: 4, 2.5, 0.33.
std::string weight_text(double weight) {
  std::string text = fmt::format("{:.2f}", weight);
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string class_text(const decision_tree& tree, std::size_t entry) {
  if (entry + 1 == tree.class_column->get_distinct()) return "(another)";
  return value_text(*tree.class_column, static_cast<unsigned int>(entry) + 1);
}

std::string threshold_of(const column& tested, const tree_node& test) {
  return shortest_value(tested, tested.get_index(test.split.threshold.c_str()));
}

std::string branch_value(const column& tested, const tree_node& child) {
  if (!tested.is_continuous()) return value_text(tested, child.branch);
  return child.branch == 1 ? "<=" : ">";
}

std::string branch_text(const column& tested, const tree_node& parent, const tree_node& child) {
  const std::string name = printable(tested.get_name());
  const std::string value = printable(branch_value(tested, child));
  if (!tested.is_continuous()) return name + " = " + value;
  return name + " " + value + " " + threshold_of(tested, parent);
}

std::string leaf_text(const decision_tree& tree, const tree_node& node) {
  const leaf_weight weight = weigh(node);
  const std::string errors = weight_text(weight.errors);
  const std::string majority = printable(class_text(tree, heaviest_class(node.class_weights)));
  return fmt::format("{} ({}{})", majority, weight_text(weight.cases),
                     errors == "0" ? "" : "/" + errors);
}

// Calls `visit` with the index and depth of every node down to `depth`, each before its children,
// these in their order.
template <class Visit>
void for_each_node(const decision_tree& tree, std::size_t depth, Visit visit) {
  std::vector<std::pair<std::size_t, std::size_t>> open{{0, 0}};
  while (!open.empty()) {
    const auto [index, level] = open.back();
    open.pop_back();
    visit(index, level);
    const tree_node& node = tree.nodes[index];
    if (level == depth) continue;
    for (unsigned int i = node.child_count; i-- > 0;)
      open.emplace_back(node.first_child + i, level + 1);
  }
}

// How many leaves are below each node; a leaf is its own.
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

// A text in double quotes, as Graphviz reads it.
std::string dot_text(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result +=
        c == '&' ? "&amp;"
                 : std::string(1, c);  // or what follows might be taken for the name of a character
  }
  return result + '"';
}

}  // namespace

std::string tree_as_text(const decision_tree& tree, std::size_t depth) {
  constexpr std::size_t most_indented = 40;  // or the text would grow with the square of the depth
  const std::vector<std::size_t> parents = node_parents(tree);
  const std::vector<std::size_t> leaves = leaves_below(tree);
  std::string report;
  for_each_node(tree, depth, [&](std::size_t index, std::size_t level) {
    const tree_node& node = tree.nodes[index];
    if (level > 0) {
      const tree_node& parent = tree.nodes[parents[index]];
      for (std::size_t i = 1; i < std::min(level, most_indented); ++i) report += "|   ";
      if (level > most_indented) report += fmt::format("(depth {}) ", level);
      report += branch_text(*tree.attributes[parent.attribute], parent, node);
    }
    const char* separator = level > 0 ? ": " : "";
    if (node.is_leaf()) {
      report += separator + leaf_text(tree, node) + '\n';
    } else if (level == depth) {
      report += fmt::format("{}... {} below [{}]\n", separator,
                            counted(leaves[index], "leaf", "leaves"), index);
    } else if (level > 0) {
      report += fmt::format(" [{}]\n", index);
    }
  });
  return report;
}

std::size_t depth_of_lines(const decision_tree& tree, std::size_t lines) {
  std::vector<std::size_t> nodes_at(2, 0);
  for (const std::size_t depth : node_depths(tree)) {
    if (depth >= nodes_at.size()) nodes_at.resize(depth + 1, 0);
    ++nodes_at[depth];
  }
  std::size_t depth = 1;
  std::size_t used = nodes_at[1];
  while (depth + 1 < nodes_at.size() && used + nodes_at[depth + 1] <= lines)
    used += nodes_at[++depth];
  return depth;
}

std::string first_lines(const std::string& text, std::size_t lines) {
  std::size_t end = 0;
  for (std::size_t line = 0; line < lines && end < text.size(); ++line)
    end = text.find('\n', end) + 1;
  const auto left_out =
      std::count(text.begin() + static_cast<std::ptrdiff_t>(end), text.end(), '\n');
  if (left_out == 0) return text;
  return text.substr(0, end) + "... and " +
         counted(static_cast<std::size_t>(left_out), "more line") + '\n';
}

std::string tree_as_dot(const decision_tree& tree, std::size_t depth) {
  std::string report =
      "digraph tree {\n  node [fontname=\"sans-serif\"]\n  edge [fontname=\"sans-serif\"]\n";
  for_each_node(tree, depth, [&](std::size_t index, std::size_t level) {
    const tree_node& node = tree.nodes[index];
    if (node.is_leaf() || level == depth) {
      const std::string more = node.is_leaf() ? "" : " ...";
      report += fmt::format("  n{} [shape=box label={}]\n", index,
                            dot_text(leaf_text(tree, node) + more));
      return;
    }
    const column& tested = *tree.attributes[node.attribute];
    report += fmt::format("  n{} [label={}]\n", index, dot_text(printable(tested.get_name())));
    for (std::size_t i = node.first_child; i < node.first_child + node.child_count; ++i) {
      std::string label = printable(branch_value(tested, tree.nodes[i]));
      if (tested.is_continuous()) label += " " + threshold_of(tested, node);
      report += fmt::format("  n{} -> n{} [label={}]\n", index, i, dot_text(label));
    }
  });
  return report + "}\n";
}

std::string tree_as_json(const decision_tree& tree) {
  const std::vector<std::size_t> parents = node_parents(tree);
  json_writer json;
  json.open('{').member("class", tree.class_column->get_name()).key("classes").open('[');
  const std::size_t class_count = tree.nodes.front().class_weights.size();
  for (std::size_t c = 0; c < class_count; ++c) json.value(class_text(tree, c));
  json.close().key("nodes").open('[');
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    json.open('{').member("node", i).key("weights").open('[');
    for (const float weight : node.class_weights) json.value(weight);
    json.close().member("class", class_text(tree, heaviest_class(node.class_weights)));
    if (i > 0) {
      const column& tested = *tree.attributes[tree.nodes[parents[i]].attribute];
      json.member("parent", parents[i])
          .member("branch", branch_value(tested, node))
          .member("share", node.share);
    }
    if (!node.is_leaf()) {
      const column& tested = *tree.attributes[node.attribute];
      json.member("attribute", tested.get_name());
      if (tested.is_continuous()) json.member("threshold", threshold_of(tested, node));
      json.key("children").open('[');
      for (std::size_t c = node.first_child; c < node.first_child + node.child_count; ++c)
        json.value(c);
      json.close();
    }
    json.close();
  }
  return json.close().close().text();
}

std::string size_line(const decision_tree& tree) {
  const tree_size size = size_of(tree);
  return fmt::format("{}, {}, depth {}", counted(size.nodes, "node"),
                     counted(size.leaves, "leaf", "leaves"), size.depth);
}

std::string error_line(const std::string& which_cases, const confusion_matrix& matrix) {
  const double total = matrix.total();
  return fmt::format("errors on the {} {} cases: {} ({:.1f}%)", weight_text(total), which_cases,
                     weight_text(matrix.errors()), total > 0 ? 100 * matrix.errors() / total : 0);
}

std::string matrix_as_text(const decision_tree& tree, const confusion_matrix& matrix) {
  constexpr std::size_t most_classes = 20;
  std::set<std::size_t> occurring;
  for (const auto& [pair, weight] : matrix.pairs()) occurring.insert({pair.first, pair.second});
  if (occurring.size() > most_classes)
    return fmt::format("({} classes: too many for a matrix)\n", occurring.size());
  std::vector<std::vector<std::string>> rows{{"actual \\ said"}};
  for (const std::size_t c : occurring) rows.front().push_back(printable(class_text(tree, c)));
  for (const std::size_t actual : occurring) {
    std::vector<std::string> row{printable(class_text(tree, actual))};
    for (const std::size_t said : occurring) row.push_back(weight_text(matrix.at(actual, said)));
    rows.push_back(std::move(row));
  }
  return aligned(rows, 'l' + std::string(occurring.size(), 'r'));
}

}  // namespace arbor::tree
