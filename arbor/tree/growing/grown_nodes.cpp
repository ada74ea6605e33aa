#include "arbor/tree/growing/grown_nodes.h"

#include <iterator>
#include <utility>

#include "arbor/model/code_readers.h"

namespace arbor::tree {

void grown_nodes::add_child(unsigned int branch, float share) {
  tree_node& child = nodes.emplace_back();
  child.branch = branch;
  child.share = share;
  cuts.emplace_back();
}

void grown_nodes::graft(std::size_t node, grown_nodes part) {
  // The part's root takes the place of `node`, the others follow all present nodes.
  const auto moved_by = static_cast<unsigned int>(nodes.size() - 1);
  for (tree_node& moved : part.nodes) moved.first_child += moved_by;
  part.nodes.front().branch = nodes[node].branch;
  part.nodes.front().share = nodes[node].share;
  nodes[node] = std::move(part.nodes.front());
  cuts[node] = part.cuts.front();
  nodes.insert(nodes.end(), std::make_move_iterator(part.nodes.begin() + 1),
               std::make_move_iterator(part.nodes.end()));
  cuts.insert(cuts.end(), part.cuts.begin() + 1, part.cuts.end());
}

namespace {

// The codes of each column that occur among the training cases.
class training_codes {
 public:
  training_codes(const occurring_codes& of_column, std::size_t columns)
      : ask(of_column), occurs(columns) {}

  // The greatest one up to `code`, which must not be below all of them.
  unsigned int up_to(std::size_t column, unsigned int code) {
    if (!ask) return code;  // every code of the table occurs
    if (occurs[column].empty()) occurs[column] = ask(column);
    while (!occurs[column][code]) --code;
    return code;
  }

 private:
  const occurring_codes& ask;
  std::vector<std::vector<bool>> occurs;  // by column, empty until it is asked for
};

std::string split_text(const table& training, std::size_t column, cut place,
                       training_codes& codes) {
  const impls::column& attribute = *training.columns[column];
  if (!attribute.is_continuous()) return attribute.get_o_set()->get_null();
  const unsigned int middle = threshold_code(attribute, place);
  const unsigned int threshold = codes.up_to(column, middle);
  if (threshold != middle) place = {threshold, threshold};
  return threshold_text(attribute, place);
}

}  // namespace

grown_nodes reachable_nodes(grown_nodes grown) {
  grown_nodes kept{{}, {}};
  std::vector<std::size_t> sources{0};  // by kept node: its present number
  for (std::size_t i = 0; i < sources.size(); ++i) {
    tree_node& node = kept.nodes.emplace_back(std::move(grown.nodes[sources[i]]));
    kept.cuts.push_back(grown.cuts[sources[i]]);
    const unsigned int first_child = node.first_child;
    node.first_child = static_cast<unsigned int>(sources.size());
    for (unsigned int child = 0; child < node.child_count; ++child)
      sources.push_back(first_child + child);
  }
  return kept;
}

occurring_codes codes_among(const table& training, const impls::w_sequence& cases) {
  if (cases.size() == training.cases.size()) return nullptr;
  return [&training, &cases](std::size_t column) {
    std::vector<bool> occurs(training.columns[column]->get_distinct());
    impls::with_codes(*training.columns[column], [&](auto code_of) {
      for (const auto& weighted : cases) occurs[code_of(weighted.first)] = true;
    });
    return occurs;
  };
}

decision_tree to_tree(const table& training, grown_nodes grown, const occurring_codes& occurring) {
  decision_tree tree;
  grown = reachable_nodes(std::move(grown));
  training_codes codes(occurring, training.columns.size());
  for (std::size_t i = 0; i < grown.nodes.size(); ++i) {
    tree_node& node = grown.nodes[i];
    if (!node.is_leaf())
      node.split.threshold = split_text(training, node.attribute, grown.cuts[i], codes);
  }
  tree.nodes = std::move(grown.nodes);
  tree.class_column.reset(training.class_column().clone(true));
  std::vector<unsigned int> attribute_of(training.columns.size(), tree_node::no_attribute);
  for (const tree_node& node : tree.nodes) {
    if (!node.is_leaf()) attribute_of[node.attribute] = 0;
  }
  for (unsigned int i = 0; i < attribute_of.size(); ++i) {
    if (attribute_of[i] == tree_node::no_attribute) continue;
    attribute_of[i] = static_cast<unsigned int>(tree.attributes.size());
    std::unique_ptr<impls::column> attribute(training.columns[i]->clone(true));
    tree.attributes.push_back(std::move(attribute));
  }
  for (tree_node& node : tree.nodes) {
    if (!node.is_leaf()) node.attribute = attribute_of[node.attribute];
  }
  return tree;
}

}  // namespace arbor::tree
