#include "arbor/report/exports/sql_export.h"

#include <fmt/format.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "arbor/csv/shown_text.h"
#include "arbor/report/exports/exported_values.h"
#include "arbor/report/exports/node_estimates.h"
#include "arbor/report/exports/path_rules.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

using impls::column;

// In quotes, each of which is doubled inside: "..." for a name, '...' for a text.
std::string sql_quoted(char quote, const std::string& text) {
  std::string result(1, quote);
  for (const char c : text) result.append(c == quote ? 2 : 1, c);
  return result + quote;
}

std::string sql_name(const column& named) {
  return sql_quoted('"', named.get_name());
}

// Whether a number rounds to at most (more than) one in single precision.
std::string rounded_side(const std::string& name, bool is_above, float number) {
  const rounding_bound bound = bound_of(number);
  if (bound.has_all) return name + (is_above ? " IS NULL AND 1 = 0" : " IS NOT NULL");
  const char* const up_to = bound.is_included ? "<=" : "<";
  const char* const above = bound.is_included ? ">" : ">=";
  return fmt::format("{} {} {}", name, is_above ? above : up_to, double_text(bound.greatest));
}

// " = 0.1"; SQL has no literal of infinity.
std::string sql_equals(double number) {
  constexpr double greatest = std::numeric_limits<double>::max();
  if (std::isfinite(number)) return " = " + double_text(number);
  return (number > 0 ? " > " : " < ") + double_text(std::copysign(greatest, number));
}

// "humidity" <= 75
std::string sql_side(const column& tested, bool is_above, unsigned int threshold) {
  const std::string text = shortest_value(tested, threshold);
  if (form_of(tested) == value_form::single_number)
    return rounded_side(sql_name(tested), is_above, single_number(text));
  return fmt::format("{} {} {}", sql_name(tested), is_above ? ">" : "<=", text);
}

std::string sql_value(const column& tested, unsigned int code) {
  const std::string text = value_text(tested, code);
  switch (form_of(tested)) {
    case value_form::text:
      return sql_name(tested) + " = " + sql_quoted('\'', text);
    case value_form::exact_number:
      return sql_name(tested) + " = " + text;
    case value_form::double_number:
      return sql_name(tested) + sql_equals(double_number(text));
    case value_form::single_number:
      break;
  }
  constexpr float infinity = std::numeric_limits<float>::infinity();
  const float number = single_number(text);
  const std::string up_to = rounded_side(sql_name(tested), false, number);
  if (number == -infinity) return up_to;
  return rounded_side(sql_name(tested), true, std::nextafter(number, -infinity)) + " AND " + up_to;
}

std::string sql_branch(const column& tested, const tree_node& test, const tree_node& child) {
  if (!tested.is_continuous()) return sql_value(tested, child.branch);
  return sql_side(tested, child.branch != 1, tested.get_index(test.split.threshold.c_str()));
}

std::string sql_condition(const column& tested, const path_condition& condition) {
  if (condition.value != 0) return sql_value(tested, condition.value);
  std::string text;
  if (condition.above != 0) text = sql_side(tested, true, condition.above);
  if (condition.above != 0 && condition.up_to != 0) text += " AND ";
  return condition.up_to == 0 ? text : text + sql_side(tested, false, condition.up_to);
}

std::string sql_class(const decision_tree& tree, std::size_t entry) {
  return sql_quoted('\'', value_text(*tree.class_column, static_cast<unsigned int>(entry) + 1));
}

// The CASE of the rows whose values are known.
void write_known(std::ostream& out, const decision_tree& tree) {
  const node_estimates estimates(tree);
  std::vector<std::size_t> open{0};  // where the rules of each CASE start
  std::string indent = "    ";
  const auto close = [&] {
    open.pop_back();
    indent.resize(indent.size() - 2);
    out << indent << "END\n";
  };
  out << "  CASE\n";
  for_each_rule(tree, [&](const path_rule& rule) {
    while (open.back() != rule.start) close();
    const char* separator = "WHEN ";
    out << indent;
    for (const path_condition& condition : rule.conditions) {
      out << separator << sql_condition(*tree.attributes[condition.attribute], condition);
      separator = " AND ";
    }
    if (tree.nodes[rule.node].is_leaf()) {
      out << " THEN " << sql_class(tree, estimates.predicted(rule.node)) << '\n';
      return;
    }
    out << " THEN CASE\n";
    open.push_back(rule.node);
    indent += "  ";
  });
  while (!open.empty()) close();
}

// Begins each row of a table of constants on a line of its own.
class row_separator {
 public:
  explicit row_separator(std::ostream& to) : out(to) {}
  std::ostream& next() {
    out << (is_first ? "\n      " : ",\n      ");
    is_first = false;
    return out;
  }

 private:
  std::ostream& out;
  bool is_first = true;
};

// For each test the child that a row takes, NULL for all of them. It is a table of its own: those
// of constants are made once for all rows.
void write_tests(std::ostream& out, const decision_tree& tree) {
  out << "    test(number, next) AS (VALUES";
  row_separator rows(out);
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& test = tree.nodes[i];
    if (test.is_leaf()) continue;
    rows.next() << fmt::format("({}, CASE", i);
    for (std::size_t c = test.first_child; c < test.first_child + test.child_count; ++c)
      out << " WHEN " << sql_branch(*tree.attributes[test.attribute], test, tree.nodes[c])
          << " THEN " << c;
    out << " END)";
  }
  out << "),\n";
}

void write_sql_nodes(std::ostream& out, const decision_tree& tree) {
  const std::vector<std::size_t> parents = node_parents(tree);
  out << "    node(number, parent, share, cases, above, leaf) AS (VALUES";
  row_separator rows(out);
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    rows.next() << fmt::format(
        "({}, {}, {}, {}, {}, {})", i, i == 0 ? "NULL" : std::to_string(parents[i]),
        double_text(static_cast<double>(node.share)), double_text(weigh(node).cases),
        i == 0 ? 0 : parent_weight, node.is_leaf() ? 1 : 0);
  }
  out << "),\n    occurring(number, class, weight) AS (VALUES";
  row_separator weights(out);
  for (std::size_t i = 0; i < tree.nodes.size(); ++i)
    for (const auto& [entry, weight] : tree.nodes[i].class_weights)
      weights.next() << fmt::format("({}, {}, {})", i, entry,
                                    double_text(static_cast<double>(weight)));
  out << "),\n    class(number, name) AS (VALUES";
  row_separator classes(out);
  for (std::size_t c = 0; c < tree.class_count(); ++c)
    classes.next() << fmt::format("({}, {})", c, sql_class(tree, c));
  out << "),\n";
}

// Down: the share of the row that comes to each node. Up: the part of it that the estimate of each
// node has in the probabilities at the leaves. The name of the class is looked up at the end:
// SQLite would add up the probabilities anew for each row of a joined table of names.
constexpr const char* shares = R"(    down(number, share, leaf) AS (
      SELECT 0, CAST(1 AS DOUBLE PRECISION), 0
      UNION ALL
      SELECT node.number, down.share * CASE WHEN test.next IS NULL THEN node.share ELSE 1 END,
             node.leaf
      FROM down JOIN test ON test.number = down.number JOIN node ON node.parent = down.number
      WHERE test.next IS NULL OR test.next = node.number),
    up(number, share) AS (
      SELECT number, share FROM down WHERE leaf = 1
      UNION ALL
      SELECT node.parent, up.share * node.above / (node.cases + node.above)
      FROM up JOIN node ON node.number = up.number
      WHERE node.above > 0 AND up.share > 1e-18)
  SELECT (SELECT name FROM class WHERE class.number = occurring.class)
  FROM up JOIN node ON node.number = up.number JOIN occurring ON occurring.number = up.number
  GROUP BY occurring.class
  ORDER BY SUM(up.share * occurring.weight / (node.cases + node.above)) DESC, occurring.class
  LIMIT 1)
)";

}  // namespace

void write_sql(std::ostream& out, const decision_tree& tree) {
  check_repeated_texts(tree, "SQL");
  std::vector<std::string> notes{
      "The unknown value is NULL; columns of numbers must have a type of numbers.",
      "An unknown value, and one that no training case of a test had, goes down every branch.",
      "There, a class that is as likely as another to ten digits may be either of them."};
  for (const auto& attribute : tree.attributes) {
    if (exceeds_double(*attribute))
      notes.push_back(in_quotes(attribute->get_name()) +
                      " has more digits than a double and needs a type that is exact.");
  }
  write_head(out, tree, "-- ", notes);
  if (tree.nodes.front().is_leaf()) {
    out << "CASE WHEN 1 = 1 THEN " << sql_class(tree, heaviest_class(tree.nodes.front()))
        << " END\n";
    return;
  }
  out << "COALESCE(\n";
  write_known(out, tree);
  out << "  ,\n  (WITH RECURSIVE\n";
  write_tests(out, tree);
  write_sql_nodes(out, tree);
  out << shares << ")\n";
}

}  // namespace arbor::tree
