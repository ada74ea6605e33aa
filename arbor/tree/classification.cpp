#include "arbor/tree/classification.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>

#include "arbor/csv/shown_text.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/value_reader.h"

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
      : source(table_column), threshold(at), read(attribute) {
    same_type = data_type_of(source) == data_type_of(attribute);
    limit = read.number(threshold.c_str());
  }

  bool has(unsigned int code) const {
    if (same_type) return source.get_o_set()->leq(code, threshold) == 0;
    return read.number(value_text(source, code).c_str()) <= limit;
  }

 private:
  const column& source;
  const std::string& threshold;
  value_reader read;
  bool same_type;
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

// By node, for class_probabilities: the greatest code of the table that goes down the low branch.
std::vector<double> low_codes(const decision_tree& tree,
                              const std::vector<const column*>& sources) {
  std::vector<double> result;
  for (const tree_node& node : tree.nodes) {
    unsigned int last_low = 0;
    if (!node.is_leaf() && tree.attributes[node.attribute]->is_continuous()) {
      const column& source = *sources[node.attribute];
      last_low = last_low_code(
          source, low_side(*tree.attributes[node.attribute], source, node.split.threshold));
    }
    result.push_back(last_low);
  }
  return result;
}

std::vector<const column*> columns_for(const decision_tree& tree, const table& rows) {
  const columns_by_name named = by_name(rows);
  std::vector<const column*> columns;
  for (const auto& attribute : tree.attributes) columns.push_back(&column_for(*attribute, named));
  return columns;
}

}  // namespace

row_classifier::row_classifier(const decision_tree& grown, const table& rows,
                               leaf_estimate estimate)
    : tree(grown),
      columns(columns_for(grown, rows)),
      predict(std::make_shared<class_probabilities>(grown, low_codes(grown, columns), estimate)) {
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const column& attribute = *tree.attributes[i];
    codes.push_back(attribute.is_discrete() ? codes_of(attribute, *columns[i])
                                            : std::vector<unsigned int>());
  }
}

double row_classifier::value(unsigned int attribute, unsigned int row) const {
  const unsigned int code = columns[attribute]->get_row_index(row);
  if (code == 0) return unknown_value;
  return codes[attribute].empty() ? code : codes[attribute][code];
}

prediction& row_classifier::operator()(unsigned int row) {
  return predict([&](unsigned int attribute) { return value(attribute, row); });
}

prediction& row_classifier::with_value_of(unsigned int row, unsigned int permuted,
                                          unsigned int other) {
  return predict([&](unsigned int attribute) {
    return value(attribute, attribute == permuted ? other : row);
  });
}

double row_classifier::weight_at(unsigned int row, std::size_t node) const {
  const class_probabilities& probabilities = predict.probabilities();
  double weight = 1;
  while (node != 0) {
    const std::size_t parent = probabilities.parent(node);
    const std::size_t child = probabilities.child(parent, value(tree.nodes[parent].attribute, row));
    if (child == class_probabilities::none) {
      weight *= static_cast<double>(tree.nodes[node].share);
    } else if (child != node) {
      return 0;
    }
    node = parent;
  }
  // The shares of one branch may be a little more than 1, and there may be many.
  return std::min(weight, 1.0);
}

evaluation classify_cases(const decision_tree& tree, const table& rows,
                          const impls::w_sequence& cases) {
  row_classifier classify(tree, rows);
  evaluation result;
  for (const auto& [row, weight] : cases) {
    const std::size_t actual = rows.class_column().get_row_index(row) - 1;
    result.add(classify(row).score(actual, static_cast<double>(weight)));
  }
  return result;
}

evaluation classify_rows(const decision_tree& tree, const table& rows) {
  row_classifier classify(tree, rows);
  const column& classes = rows.class_column();
  const std::vector<unsigned int> class_codes = codes_of(*tree.class_column, classes);
  evaluation result;
  for (const auto& [row, weight] : rows.cases) {
    if (weight == 0) continue;
    const unsigned int code = class_codes[classes.get_row_index(row)];
    const std::size_t actual = code == 0 ? tree.class_count() : code - 1;
    result.add(classify(row).score(actual, static_cast<double>(weight)));
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
