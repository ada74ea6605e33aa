#include "arbor/report/node_text.h"

#include <fmt/format.h>

#include "arbor/csv/shown_text.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

using impls::column;

std::string weight_text(double weight) {
  std::string text = fmt::format("{:.2f}", weight);
  while (text.back() == '0') text.pop_back();
  if (text.back() == '.') text.pop_back();
  return text;
}

std::string class_text(const column& classes, std::size_t entry) {
  if (entry + 1 == classes.get_distinct()) return "(another)";
  return value_text(classes, static_cast<unsigned int>(entry) + 1);
}

std::string class_text(const decision_tree& tree, std::size_t entry) {
  return class_text(*tree.class_column, entry);
}

std::string test_threshold(const column& tested, const tree_node& test) {
  return shortest_value(tested, tested.get_index(test.split.threshold.c_str()));
}

std::string branch_value(const column& tested, const tree_node& child) {
  if (!tested.is_continuous()) return value_text(tested, child.branch);
  return child.branch == 1 ? "<=" : ">";
}

std::string leaf_text(const decision_tree& tree, std::size_t index, std::size_t predicted) {
  const tree_node& node = tree.nodes[index];
  const double cases = weigh(node).cases;
  const std::string errors = weight_text(cases - static_cast<double>(weight_of(node, predicted)));
  return fmt::format("{} ({}{})", printable(class_text(tree, predicted)), weight_text(cases),
                     errors == "0" ? "" : "/" + errors);
}

}  // namespace arbor::tree
