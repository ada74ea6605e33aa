#include "arbor/report/tree_graph.h"

#include <fmt/format.h>

#include "arbor/csv/shown_text.h"
#include "arbor/report/node_text.h"
#include "arbor/report/node_walk.h"

namespace arbor::tree {

namespace {

// A text in double quotes. Graphviz reads HTML entities, so an "&" becomes one: "a&lt;" would show
// as "a<" otherwise.
std::string dot_text(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c == '&' ? "&amp;" : std::string(1, c);
  }
  return result + '"';
}

std::string box(const decision_tree& tree, std::size_t index, std::size_t predicted) {
  const std::string more = tree.nodes[index].is_leaf() ? "" : " ...";
  const std::string label = leaf_text(tree, index, predicted) + more;
  return fmt::format("  n{} [shape=box label={}]\n", index, dot_text(label));
}

// An ellipse and the edges to the children.
std::string ellipse(const decision_tree& tree, std::size_t index) {
  const tree_node& test = tree.nodes[index];
  const impls::column& tested = *tree.attributes[test.attribute];
  const std::string threshold = tested.is_continuous() ? " " + test_threshold(tested, test) : "";
  std::string result =
      fmt::format("  n{} [label={}]\n", index, dot_text(printable(tested.get_name())));
  for (std::size_t i = test.first_child; i < test.first_child + test.child_count; ++i) {
    const std::string label = printable(branch_value(tested, tree.nodes[i])) + threshold;
    result += fmt::format("  n{} -> n{} [label={}]\n", index, i, dot_text(label));
  }
  return result;
}

}  // namespace

std::string tree_as_dot(const decision_tree& tree, std::size_t depth) {
  std::string graph =
      "digraph tree {\n  node [fontname=\"sans-serif\"]\n  edge [fontname=\"sans-serif\"]\n";
  const std::vector<std::size_t> predicted = predicted_classes(tree);
  for_each_node(tree, depth, [&](std::size_t index, std::size_t level) {
    const bool is_box = tree.nodes[index].is_leaf() || level == depth;
    graph += is_box ? box(tree, index, predicted[index]) : ellipse(tree, index);
  });
  return graph + "}\n";
}

}  // namespace arbor::tree
