#include "arbor/report/tree_graph.h"

#include <fmt/format.h>

#include "arbor/report/node_text.h"
#include "arbor/report/node_walk.h"
#include "arbor/tree/class_distribution.h"

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

// An ellipse and the edges to the children.
void write_test(std::ostream& out, column_texts& texts, const decision_tree& tree,
                std::size_t index) {
  const tree_node& test = tree.nodes[index];
  const impls::column& tested = *tree.attributes[test.attribute];
  const std::string threshold = tested.is_continuous() ? " " + test_threshold(tested, test) : "";
  out << fmt::format("  n{} [label={}]\n", index, dot_text(texts.name(tested)));
  for (std::size_t i = test.first_child; i < test.first_child + test.child_count; ++i) {
    const std::string label = branch_value(texts, tested, tree.nodes[i]) + threshold;
    out << fmt::format("  n{} -> n{} [label={}]\n", index, i, dot_text(label));
  }
}

}  // namespace

void write_tree_dot(std::ostream& out, const decision_tree& tree, std::size_t depth) {
  constexpr std::size_t label_width = 60;
  column_texts texts = shown_texts(label_width);
  const std::vector<std::size_t> predicted = predicted_classes(tree);
  out << "digraph tree {\n  node [fontname=\"sans-serif\"]\n  edge [fontname=\"sans-serif\"]\n";
  for_each_node(tree, depth, [&](std::size_t index, std::size_t level) {
    const tree_node& node = tree.nodes[index];
    if (!node.is_leaf() && level < depth) {
      write_test(out, texts, tree, index);
      return;
    }
    const std::string label =
        leaf_text(texts, tree, node, predicted[index]) + (node.is_leaf() ? "" : " ...");
    out << fmt::format("  n{} [shape=box label={}]\n", index, dot_text(label));
  });
  out << "}\n";
}

}  // namespace arbor::tree
