#include "arbor/report/node_text.h"

#include <fmt/format.h>

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

std::string test_threshold(const column& tested, const tree_node& test) {
  return shortest_value(tested, tested.get_index(test.split.threshold.c_str()));
}

const char* side_of_threshold(const tree_node& child) {
  return child.branch == 1 ? "<=" : ">";
}

std::string branch_value(column_texts& texts, const column& tested, const tree_node& child) {
  return tested.is_continuous() ? side_of_threshold(child) : texts.value(tested, child.branch);
}

std::string leaf_text(column_texts& texts, const decision_tree& tree, const tree_node& node,
                      std::size_t predicted) {
  const double cases = weigh(node).cases;
  const std::string errors = weight_text(cases - static_cast<double>(weight_of(node, predicted)));
  return fmt::format("{} ({}{})", texts.class_name(*tree.class_column, predicted),
                     weight_text(cases), errors == "0" ? "" : "/" + errors);
}

}  // namespace arbor::tree
