#include "arbor/report/tree_json.h"

#include <limits>
#include <optional>
#include <vector>

#include "arbor/report/json_writer.h"
#include "arbor/report/node_text.h"
#include "arbor/tree/attribute_importance.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

void classes_to_json(json_writer& json, const decision_tree& tree) {
  json.open('[');
  for (std::size_t c = 0; c < tree.class_count(); ++c) json.value(class_text(tree, c));
  json.close();
}

void origin_to_json(json_writer& json, const tree_origin& origin) {
  json.open('{').member("table", origin.table);
  json.member("rows", std::size_t{origin.rows});
  json.member("min_weight", origin.min_weight);
  const bool limited = origin.max_depth != std::numeric_limits<unsigned int>::max();
  json.member("max_depth", limited ? std::optional(origin.max_depth) : std::nullopt);
  json.member("confidence", origin.pruned ? std::optional(origin.confidence) : std::nullopt);
  json.close();
}

void attributes_to_json(json_writer& json, const decision_tree& tree) {
  const std::vector<double> importance = importance_of_attributes(tree);
  json.open('[');
  for (std::size_t i = 0; i < tree.attributes.size(); ++i) {
    const impls::column& attribute = *tree.attributes[i];
    json.open('{').member("name", attribute.get_name());
    json.member("kind", attribute.get_type());
    json.member("type", attribute.get_o_set()->get_datatype());
    json.member("importance", static_cast<float>(importance[i]));
    json.close();
  }
  json.close();
}

void weights_to_json(json_writer& json, const decision_tree& tree, const tree_node& node) {
  constexpr std::size_t most_listed = 1000;
  if (tree.class_count() > most_listed) {
    json.key("class_weights").open('[');
    for (const auto& present : node.class_weights)
      json.open('[').value(present.entry).value(present.weight).close();
  } else {
    json.key("weights").open('[');
    for (std::size_t c = 0; c < tree.class_count(); ++c) json.value(weight_of(node, c));
  }
  json.close();
}

void branch_to_json(json_writer& json, const decision_tree& tree, std::size_t parent,
                    const tree_node& node) {
  const impls::column& tested = *tree.attributes[tree.nodes[parent].attribute];
  json.member("parent", parent);
  json.member("branch", branch_value(tested, node));
  json.member("share", node.share);
}

void test_to_json(json_writer& json, const decision_tree& tree, const tree_node& test) {
  const impls::column& tested = *tree.attributes[test.attribute];
  json.member("attribute", tested.get_name());
  if (tested.is_continuous()) json.member("threshold", test_threshold(tested, test));
  json.key("children").open('[');
  for (std::size_t child = test.first_child; child < test.first_child + test.child_count; ++child)
    json.value(child);
  json.close();
}

}  // namespace

std::string tree_as_json(const decision_tree& tree) {
  const std::vector<std::size_t> parents = node_parents(tree);
  json_writer json;
  json.open('{').member("class", tree.class_column->get_name());
  const std::vector<std::size_t> predicted = predicted_classes(tree);
  classes_to_json(json.key("classes"), tree);
  json.key("origin");
  if (tree.origin) {
    origin_to_json(json, *tree.origin);
  } else {
    json.null();
  }
  attributes_to_json(json.key("attributes"), tree);
  json.key("nodes").open('[');
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    json.open('{').member("node", i);
    weights_to_json(json, tree, node);
    json.member("class", class_text(tree, predicted[i]));
    if (i > 0) branch_to_json(json, tree, parents[i], node);
    if (!node.is_leaf()) test_to_json(json, tree, node);
    json.close();
  }
  return json.close().close().text();
}

}  // namespace arbor::tree
