#include "arbor/tree/classification.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <stdexcept>

#include "arbor/table/shortest_text.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

using impls::column;
using impls::o_set;

constexpr unsigned int every_branch = 0;  // no branch has this number

// The child of a test that stands for a branch; null when every branch is to be gone down.
const tree_node* child_on(const decision_tree& tree, const tree_node& test, unsigned int branch) {
  const auto first = tree.nodes.begin() + test.first_child;
  const auto last = first + test.child_count;
  const auto child = std::lower_bound(
      first, last, branch, [](const tree_node& n, unsigned int b) { return n.branch < b; });
  return branch == every_branch || child == last || child->branch != branch ? nullptr : &*child;
}

// Adds up the distributions of all leaves that a case comes to; `branch_of` tells the branch of a
// node's index.
template <class BranchOf>
std::vector<double> distribution_of(const decision_tree& tree, BranchOf branch_of) {
  std::vector<double> result(tree.nodes.front().class_weights.size(), 0.0);
  std::vector<std::pair<std::size_t, double>> open{{0, 1.0}};
  while (!open.empty()) {
    const auto [index, weight] = open.back();
    open.pop_back();
    const tree_node& node = tree.nodes[index];
    if (node.is_leaf()) {
      const double cases = weigh(node).cases;
      for (std::size_t c = 0; c < result.size(); ++c) {
        result[c] += weight * static_cast<double>(node.class_weights[c]) / cases;
      }
    } else if (const tree_node* child = child_on(tree, node, branch_of(index))) {
      open.emplace_back(child - tree.nodes.data(), weight);
    } else {
      for (std::size_t i = node.first_child; i < node.first_child + node.child_count; ++i) {
        open.emplace_back(i, weight * static_cast<double>(tree.nodes[i].share));
      }
    }
  }
  double sum = std::accumulate(result.begin(), result.end(), 0.0);
  if (!(sum > 0) || !std::isfinite(sum)) {
    // So many shares have been multiplied that nothing, or no number, has come down. All that is
    // known is the root.
    const std::vector<float>& root = tree.nodes.front().class_weights;
    result.assign(root.begin(), root.end());
    sum = std::accumulate(result.begin(), result.end(), 0.0);
  }
  for (double& probability : result) probability /= sum;
  return result;
}

const column& column_named(const table& rows, const std::string& name) {
  for (const auto& candidate : rows.columns) {
    if (candidate->get_name() == name) return *candidate;
  }
  throw std::runtime_error("the table has no column of the name " + name);
}

// A number as the domain of a continuous attribute holds it. What it takes for an integer without
// being a number, a sign alone, is 0.
double number_of(const column& attribute, const char* text) {
  double number = 0;
  strata::util::read_number(text, number);
  const bool is_float = attribute.get_o_set()->get_datatype() == "float";
  return is_float ? static_cast<double>(static_cast<float>(number)) : number;
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

std::size_t likeliest_class(const std::vector<double>& distribution) {
  return static_cast<std::size_t>(std::max_element(distribution.begin(), distribution.end()) -
                                  distribution.begin());
}

row_classifier::row_classifier(const decision_tree& grown, const table& rows)
    : tree(grown), parents(node_parents(grown)) {
  for (const auto& attribute : tree.attributes) {
    const column& source = column_named(rows, attribute->get_name());
    columns.push_back(&source);
    codes.emplace_back(source.get_distinct(), 0);
    for (unsigned int code = 1; code < source.get_distinct() && attribute->is_discrete(); ++code) {
      codes.back()[code] = attribute->get_index(shortest_value(source, code).c_str());
    }
  }
  for (const tree_node& node : tree.nodes) {
    const bool cut = !node.is_leaf() && tree.attributes[node.attribute]->is_continuous();
    thresholds.push_back(cut ? last_code_up_to(*columns[node.attribute], node.split.threshold) : 0);
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
  return distribution_of(tree, [&](std::size_t node) { return branch_of(node, row); });
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

text_classifier::text_classifier(const decision_tree& grown)
    : tree(grown), values(grown.attributes.size()) {
  for (const tree_node& node : tree.nodes) {
    const bool cut = !node.is_leaf() && tree.attributes[node.attribute]->is_continuous();
    thresholds.push_back(
        cut ? number_of(*tree.attributes[node.attribute], node.split.threshold.c_str()) : 0);
  }
}

text_classifier::value text_classifier::read(const column& attribute, const char* text) {
  if (text == nullptr) return {};
  value result;
  if (attribute.is_continuous()) {
    attribute.get_o_set()->leq(text, text);  // throws if the text is not of the data type
    result.known = true;
    result.number = number_of(attribute, text);
    if (std::isnan(result.number)) throw std::runtime_error("not a number");
  } else {
    result.known = code_of_text(attribute, text, result.code);
  }
  return result;
}

std::vector<double> text_classifier::operator()(const std::vector<const char*>& texts) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    try {
      values[i] = read(*tree.attributes[i], texts[i]);
    } catch (const std::runtime_error&) {
      throw unfit_text(i);
    }
  }
  return distribution_of(tree, [&](std::size_t index) {
    const unsigned int attribute = tree.nodes[index].attribute;
    const value& tested = values[attribute];
    if (!tested.known) return every_branch;
    if (!tree.attributes[attribute]->is_continuous()) return tested.code;
    return tested.number <= thresholds[index] ? 1U : 2U;
  });
}

confusion_matrix classify_cases(const decision_tree& tree, const table& rows,
                                const impls::w_sequence& cases) {
  const row_classifier say(tree, rows);
  confusion_matrix result;
  for (const auto& [row, weight] : cases) {
    result.add(rows.class_column().get_row_index(row) - 1, likeliest_class(say(row)),
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
