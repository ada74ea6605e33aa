#include "arbor/store/model_check.h"

#include <cmath>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <utility>

#include "arbor/csv/shown_text.h"
#include "arbor/table/value_text.h"
#include "arbor/utils/ibinstream.h"
#include "arbor/utils/memory_device.h"
#include "arbor/utils/obinstream.h"

namespace arbor::tree {

namespace {

using impls::column;
using strata::data_types::datatype;
using strata::inpout::ibinstream;
using strata::inpout::memory_device;
using strata::inpout::obinstream;

[[noreturn]] void refuse(const char* what) {
  throw std::runtime_error(what);
}

constexpr const char* out_of_order = "the values of a column are out of order";

// The numbers of a domain, from its record: the texts of the smallest ones are the same.
template <class Number>
std::vector<datatype<Number>> numbers_of(impls::o_set& domain) {
  memory_device device;
  obinstream out(device);
  domain.bin_out(out);
  ibinstream in(device);
  std::vector<datatype<Number>>* read = nullptr;
  in.read_special(read);
  const std::unique_ptr<std::vector<datatype<Number>>> numbers(read);
  return numbers == nullptr ? std::vector<datatype<Number>>() : std::move(*numbers);
}

template <class Number>
void check_numbers(impls::o_set& domain) {
  const std::vector<datatype<Number>> numbers = numbers_of<Number>(domain);
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    const Number number = numbers[i].value;
    if (number != number) refuse("a value of a column is not a number");
    if (i > 0 && !(numbers[i - 1].value < number)) refuse(out_of_order);
  }
}

// Texts have to be as a table keeps them, or they are not found.
void check_texts(impls::o_set& domain) {
  std::string before;
  for (unsigned int code = 1; code <= domain.size_of_known(); ++code) {
    std::string text = domain.get_value(code);
    const bool is_found = text != domain.get_null() && to_domain_text(to_cell_text(text)) == text;
    if (!is_found || (code > 1 && text <= before)) refuse(out_of_order);
    before = std::move(text);
  }
}

// Checks that the values are in order and differ, so that each can be looked up.
void check_domain(impls::o_set& domain) {
  const std::string type = domain.get_datatype();
  if (type == "integer") check_numbers<int>(domain);
  if (type == "uinteger") check_numbers<unsigned int>(domain);
  if (type == "float") check_numbers<float>(domain);
  if (type == "double") check_numbers<double>(domain);
  if (type == "string") check_texts(domain);
}

void check_column(const column& checked) {
  if (checked.size() != 0) refuse("a column has rows");
  check_domain(*checked.get_o_set());
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

void check_scale(impls::o_set& steps, const decimal_scale& scale) {
  if (steps.get_datatype() != "uinteger") refuse("a scale is of no column of steps");
  const std::vector<datatype<unsigned int>> numbers = numbers_of<unsigned int>(steps);
  if (!is_sound(scale, numbers.empty() ? 0 : numbers.back().value))
    refuse("a column has no proper scale");
}

void check_names(const decision_tree& tree) {
  std::set<std::string> names{tree.class_column->get_name()};
  for (const auto& attribute : tree.attributes) {
    const std::string name = attribute->get_name();
    if (!names.insert(name).second)
      throw std::runtime_error("two columns have the name " + in_quotes(name));
  }
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
