#include "arbor/tree/classification.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>

#include "arbor/csv/shown_text.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

using impls::column;

using columns_by_name = std::map<std::string, const column*>;

columns_by_name by_name(const table& rows) {
  columns_by_name result;
  for (const auto& named : rows.columns) result.emplace(named->get_name(), named.get());
  return result;
}

const column& column_for(const column& attribute, const columns_by_name& columns) {
  const std::string name = attribute.get_name();
  const auto found = columns.find(name);
  if (found == columns.end())
    throw std::runtime_error("the table has no column of the name " + in_quotes(name));
  if (attribute.is_continuous() && found->second->get_o_set()->get_datatype() == "string") {
    throw std::runtime_error("the column " + in_quotes(name) +
                             " of the table has texts, which cannot be compared with a threshold");
  }
  return *found->second;
}

// By code of a table's column: the code of the same value in a discrete attribute. A value that the
// attribute does not have is unknown.
std::vector<unsigned int> codes_of(const column& attribute, const column& source) {
  std::vector<unsigned int> codes(source.get_distinct(), 0);
  for (unsigned int code = 1; code < codes.size(); ++code)
    find_value(attribute, value_text(source, code).c_str(), codes[code]);
  return codes;
}

// Whether a known value of a table's column goes down the low branch of a test.
class low_side {
 public:
  low_side(const column& attribute, const column& table_column, const std::string& at)
      : source(table_column), threshold(at) {
    const std::string type = attribute.get_o_set()->get_datatype();
    same_type = source.get_o_set()->get_datatype() == type;
    rounds = type == "float";
    limit = number_of(threshold);
  }

  bool has(unsigned int code) const {
    if (same_type) return source.get_o_set()->leq(code, threshold) == 0;
    return number_of(value_text(source, code)) <= limit;
  }

 private:
  double number_of(const std::string& text) const {
    double number = 0;
    read_known_number(text.c_str(), number);
    return rounds ? static_cast<double>(static_cast<float>(number)) : number;
  }

  const column& source;
  const std::string& threshold;
  bool same_type;
  bool rounds;  // as the values of the attribute were
  double limit;
};

// The greatest code of a column that goes down the low branch.
unsigned int last_low_code(const column& source, const low_side& low_branch) {
  unsigned int low = 0;
  unsigned int high = source.get_distinct() - 1;
  while (low < high) {
    const unsigned int middle = high - (high - low) / 2;
    if (low_branch.has(middle)) {
      low = middle;
    } else {
      high = middle - 1;
    }
  }
  return low;
}

}  // namespace

row_classifier::row_classifier(const decision_tree& grown, const table& rows,
                               leaf_estimate estimate)
    : tree(grown), probabilities(grown, estimate), parents(node_parents(grown)) {
  const columns_by_name named = by_name(rows);
  for (const auto& attribute : tree.attributes) {
    const column& source = column_for(*attribute, named);
    columns.push_back(&source);
    codes.push_back(attribute->is_discrete() ? codes_of(*attribute, source)
                                             : std::vector<unsigned int>());
  }
  for (const tree_node& node : tree.nodes) {
    unsigned int last_low = 0;
    if (!node.is_leaf() && tree.attributes[node.attribute]->is_continuous()) {
      const column& source = *columns[node.attribute];
      last_low = last_low_code(
          source, low_side(*tree.attributes[node.attribute], source, node.split.threshold));
    }
    thresholds.push_back(last_low);
  }
}

unsigned int row_classifier::branch_of(std::size_t node, unsigned int row) const {
  const unsigned int attribute = tree.nodes[node].attribute;
  const unsigned int code = columns[attribute]->get_row_index(row);
  if (tree.attributes[attribute]->is_discrete()) return codes[attribute][code];
  if (code == 0) return every_branch;
  return code <= thresholds[node] ? 1 : 2;
}

std::vector<double> row_classifier::operator()(unsigned int row) const {
  return probabilities.of_case([&](std::size_t node) { return branch_of(node, row); });
}

std::vector<double> row_classifier::with_value_of(unsigned int row, unsigned int attribute,
                                                  unsigned int other) const {
  return probabilities.of_case([&](std::size_t node) {
    return branch_of(node, tree.nodes[node].attribute == attribute ? other : row);
  });
}

double row_classifier::weight_at(unsigned int row, std::size_t node) const {
  double weight = 1;
  while (node != 0) {
    const std::size_t parent = parents[node];
    const tree_node* child = child_on(tree, tree.nodes[parent], branch_of(parent, row));
    if (child == nullptr) {
      weight *= static_cast<double>(tree.nodes[node].share);
    } else if (child != &tree.nodes[node]) {
      return 0;
    }
    node = parent;
  }
  // The shares of one branch may be a little more than 1, and there may be many.
  return std::min(weight, 1.0);
}

evaluation classify_cases(const decision_tree& tree, const table& rows,
                          const impls::w_sequence& cases) {
  const row_classifier classify(tree, rows);
  evaluation result;
  for (const auto& [row, weight] : cases) {
    result.add(rows.class_column().get_row_index(row) - 1, classify(row),
               static_cast<double>(weight));
  }
  return result;
}

impls::w_sequence cases_at_node(const decision_tree& tree, const table& rows, std::size_t node) {
  const row_classifier classifier(tree, rows);
  impls::w_sequence cases;
  for (const auto& [row, weight] : rows.cases) {
    const float weight_here = weight * static_cast<float>(classifier.weight_at(row, node));
    if (weight_here > 0) cases.push_back({row, weight_here});
  }
  return cases;
}

}  // namespace arbor::tree
