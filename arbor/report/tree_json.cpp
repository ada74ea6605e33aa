#include "arbor/report/tree_json.h"

#include <limits>
#include <optional>
#include <vector>

#include "arbor/report/json_texts.h"
#include "arbor/report/json_writer.h"
#include "arbor/report/node_text.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/tree/attribute_importance.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

void classes_to_json(json_writer& json, const decision_tree& tree) {
  json.open('[');
  for (std::size_t c = 0; c < tree.class_count(); ++c)
    json.value(class_text(*tree.class_column, c));
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
    json.member("type", data_type_of(attribute));
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
      json.open_numbers().value(present.entry).value(present.weight).close();
  } else {
    json.key("weights").open_numbers();
    auto present = node.class_weights.begin();
    for (std::size_t c = 0; c < tree.class_count(); ++c) {
      const bool occurs = present != node.class_weights.end() && present->entry == c;
      json.value(occurs ? (present++)->weight : 0.0F);
    }
  }
  json.close();
}

void branch_to_json(json_writer& json, json_texts& texts, const decision_tree& tree,
                    std::size_t parent, const tree_node& node) {
  const impls::column& tested = *tree.attributes[tree.nodes[parent].attribute];
  json.member("parent", parent);
  if (tested.is_continuous()) {
    json.member("branch", side_of_threshold(node));
  } else {
    texts.value_member(json, "branch", tested, node.branch);
  }
  json.member("share", node.share);
}

void test_to_json(json_writer& json, json_texts& texts, const decision_tree& tree,
                  const tree_node& test) {
  const impls::column& tested = *tree.attributes[test.attribute];
  texts.name_member(json, "attribute", tested);
  if (tested.is_continuous()) json.member("threshold", test_threshold(tested, test));
  json.key("children").open_numbers();
  for (std::size_t child = test.first_child; child < test.first_child + test.child_count; ++child)
    json.value(child);
  json.close();
}

}  // namespace

void write_tree_json(std::ostream& out, const decision_tree& tree) {
  const std::vector<std::size_t> parents = node_parents(tree);
  json_writer json(out);
  json_texts texts;
  write_format(json.open('{'), "arbor-tree");
  json.member("class", tree.class_column->get_name());
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
    texts.class_member(json, "class", *tree.class_column, predicted[i]);
    if (i > 0) branch_to_json(json, texts, tree, parents[i], node);
    if (!node.is_leaf()) test_to_json(json, texts, tree, node);
    json.close();
  }
  json.close();
  texts.write_long_texts(json);
  json.close();
}

}  // namespace arbor::tree
