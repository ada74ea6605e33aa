#include "arbor/report/tree_json.h"

#include <vector>

#include "arbor/report/json_writer.h"
#include "arbor/report/node_text.h"

namespace arbor::tree {

namespace {

void classes_to_json(json_writer& json, const decision_tree& tree) {
  const std::size_t class_count = tree.nodes.front().class_weights.size();
  json.open('[');
  for (std::size_t c = 0; c < class_count; ++c) json.value(class_text(tree, c));
  json.close();
}

void weights_to_json(json_writer& json, const decision_tree& tree, const tree_node& node) {
  json.key("weights").open('[');
  for (const float weight : node.class_weights) json.value(weight);
  json.close().member("class", class_text(tree, heaviest_class(node.class_weights)));
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
  classes_to_json(json.key("classes"), tree);
  json.key("nodes").open('[');
  for (std::size_t i = 0; i < tree.nodes.size(); ++i) {
    const tree_node& node = tree.nodes[i];
    json.open('{').member("node", i);
    weights_to_json(json, tree, node);
    if (i > 0) branch_to_json(json, tree, parents[i], node);
    if (!node.is_leaf()) test_to_json(json, tree, node);
    json.close();
  }
  return json.close().close().text();
}

}  // namespace arbor::tree
