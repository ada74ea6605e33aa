#include "arbor/report/exports/rules_export.h"

#include <fmt/format.h>

#include "arbor/report/exports/exported_values.h"
#include "arbor/report/exports/node_estimates.h"
#include "arbor/report/exports/path_rules.h"
#include "arbor/report/node_text.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

// "50 < humidity <= 75"
std::string rule_condition(column_texts& texts, const decision_tree& tree,
                           const path_condition& condition) {
  const impls::column& tested = *tree.attributes[condition.attribute];
  const std::string& name = texts.name(tested);
  if (condition.value != 0) return name + " = " + texts.value(tested, condition.value);
  const auto threshold = [&](unsigned int code) { return shortest_value(tested, code); };
  if (condition.up_to == 0) return name + " > " + threshold(condition.above);
  const std::string above = condition.above == 0 ? "" : threshold(condition.above) + " < ";
  return above + name + " <= " + threshold(condition.up_to);
}

}  // namespace

void write_rules(std::ostream& out, const decision_tree& tree, std::size_t width) {
  column_texts texts = shown_texts(width);
  const node_estimates estimates(tree);
  write_head(out, tree, "# ",
             {"A case whose value is unknown, or new to a test, fulfils no rule that asks for it:",
              "arbor classify sends it down every branch instead."});
  for_each_rule(tree, [&](const path_rule& rule) {
    out << "if ";
    if (rule.start != 0) out << fmt::format("at [{}]", rule.start);
    if (rule.start == 0 && rule.conditions.empty()) out << "anything";
    bool is_first = rule.start == 0;
    for (const path_condition& condition : rule.conditions) {
      out << (is_first ? "" : " and ") << rule_condition(texts, tree, condition);
      is_first = false;
    }
    const tree_node& node = tree.nodes[rule.node];
    if (!node.is_leaf()) {
      out << fmt::format(" then go to [{}]\n", rule.node);
      return;
    }
    out << fmt::format(" then {}, probability {:.3f}\n",
                       leaf_text(texts, tree, node, estimates.predicted(rule.node)),
                       estimates.probability_of_predicted(rule.node));
  });
}

}  // namespace arbor::tree
