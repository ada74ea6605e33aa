#include "arbor/tree/classification.h"

#include <stdexcept>
#include <string>

#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

using impls::column;

const column& column_named(const table& rows, const std::string& name) {
  for (const auto& candidate : rows.columns) {
    if (candidate->get_name() == name) return *candidate;
  }
  throw std::runtime_error("the table has no column of the name " + name);
}

// The greatest code of a column whose value is not above a threshold.
unsigned int last_code_up_to(const column& source, const std::string& threshold) {
  unsigned int low = 0;
  unsigned int high = source.get_distinct() - 1;
  while (low < high) {
    const unsigned int middle = high - (high - low) / 2;
    if (source.get_o_set()->leq(middle, threshold) == 0) {
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
  for (const auto& attribute : tree.attributes) {
    const column& source = column_named(rows, attribute->get_name());
    columns.push_back(&source);
    codes.emplace_back(source.get_distinct(), 0);
    for (unsigned int code = 1; code < source.get_distinct() && attribute->is_discrete(); ++code) {
      codes.back()[code] = attribute->get_index(shortest_value(source, code).c_str());
    }
  }
  for (const tree_node& node : tree.nodes) {
    const bool is_cut = !node.is_leaf() && tree.attributes[node.attribute]->is_continuous();
    thresholds.push_back(is_cut ? last_code_up_to(*columns[node.attribute], node.split.threshold)
                                : 0);
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
  return weight;
}

confusion_matrix classify_cases(const decision_tree& tree, const table& rows,
                                const impls::w_sequence& cases) {
  const row_classifier classify(tree, rows);
  confusion_matrix result;
  for (const auto& [row, weight] : cases) {
    result.add(rows.class_column().get_row_index(row) - 1, likeliest_class(classify(row)),
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
