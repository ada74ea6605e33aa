#include "arbor/store/model_check.h"

#include <cmath>
#include <stdexcept>

#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

using impls::column;

[[noreturn]] void refuse(const char* what) {
  throw std::runtime_error(what);
}

// Checks that every value can be looked up, which needs them in order. Domains of doubles are not
// checked: the smallest ones have the same text.
void check_domain(const column& checked) {
  const unsigned int codes = checked.get_distinct();
  if (checked.get_o_set()->get_datatype() == "double") return;
  for (unsigned int code = 1; code < codes; ++code) {
    unsigned int found = 0;
    if (!code_of_text(checked, value_text(checked, code).c_str(), found) || found != code) {
      refuse("the values of a column are out of order");
    }
  }
}

void check_column(const column& checked) {
  if (checked.size() != 0) refuse("a column has rows");
  check_domain(checked);
}

void check_weights(const decision_tree& tree, const tree_node& node) {
  if (node.class_weights.empty()) refuse("a node has no weight");
  std::size_t next = 0;  // the least entry that may follow
  for (const auto& [entry, weight] : node.class_weights) {
    check_weight(weight);
    if (!(weight > 0)) refuse("a class has no proper weight");
    if (entry < next || entry >= tree.class_count())
      refuse("the classes of a node are out of order");
    next = std::size_t{entry} + 1;
  }
  // A share is at most 1, but for the rounding of float sums, which is far smaller than this.
  if (!(node.share >= 0 && node.share <= 2)) refuse("a branch has no proper share");
}

void check_split(const tree_node& node, const column& tested) {
  if (!tested.is_continuous()) {
    if (node.child_count == 0) refuse("a test has no branches");
    return;
  }
  if (tested.get_index(node.split.threshold.c_str()) == 0) refuse("a threshold is no value");
  if (node.child_count != 2) refuse("a test has no branches");
}

void check_children(const decision_tree& tree, std::size_t index, unsigned int last_branch,
                    std::vector<bool>& has_parent) {
  const tree_node& node = tree.nodes[index];
  const auto end_child = static_cast<unsigned long long>(node.first_child) + node.child_count;
  if (node.first_child <= index || end_child > tree.nodes.size()) refuse("a branch is missing");
  unsigned int branch_before = 0;
  double shares = 0;
  for (unsigned int i = node.first_child; i < node.first_child + node.child_count; ++i) {
    const tree_node& child = tree.nodes[i];
    if (child.branch <= branch_before || child.branch > last_branch)
      refuse("a branch is out of order");
    if (has_parent[i]) refuse("a branch has two parents");
    has_parent[i] = true;
    branch_before = child.branch;
    shares += static_cast<double>(child.share);
  }
  if (!(shares > 0)) refuse("the branches of a test have no share");
}

void check_node(const decision_tree& tree, std::size_t index, std::vector<bool>& has_parent) {
  const tree_node& node = tree.nodes[index];
  check_weights(tree, node);
  if (node.is_leaf()) {
    if (node.child_count != 0) refuse("a leaf has branches");
    return;
  }
  if (node.attribute >= tree.attributes.size()) refuse("a node tests no attribute");
  const column& tested = *tree.attributes[node.attribute];
  check_split(node, tested);
  const unsigned int last_branch = tested.is_continuous() ? 2 : tested.get_o_set()->size_of_known();
  check_children(tree, index, last_branch, has_parent);
}

}  // namespace

void check_class_column(const column& checked) {
  check_column(checked);
  if (!checked.is_class() || checked.get_range().second == 0) refuse("it has no class");
}

void check_attribute(const column& checked) {
  check_column(checked);
  if (!checked.is_discrete() && !checked.is_continuous())
    refuse("an attribute is neither discrete nor continuous");
}

void check_origin(const tree_origin& origin) {
  const bool proper = origin.min_weight >= 0 && std::isfinite(origin.min_weight) &&
                      (!origin.pruned || (origin.confidence > 0 && origin.confidence < 1));
  if (!proper) refuse("its origin is no growing of a tree");
}

void check_weight(float weight) {
  if (!(weight >= 0) || !std::isfinite(weight)) refuse("a class has no proper weight");
}

void check_nodes(const decision_tree& tree) {
  std::vector<bool> has_parent(tree.nodes.size(), false);
  has_parent[0] = true;
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) check_node(tree, i, has_parent);
  for (const bool found : has_parent) {
    if (!found) refuse("a node has no parent");
  }
}

}  // namespace arbor::tree
