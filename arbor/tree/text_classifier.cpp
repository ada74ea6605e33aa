#include "arbor/tree/text_classifier.h"

#include <cstring>

#include "arbor/table/value_text.h"

namespace arbor::tree {

text_classifier::text_classifier(const decision_tree& grown, leaf_estimate estimate)
    : tree(grown), probabilities(grown, estimate), values(grown.attributes.size()) {
  for (const auto& attribute : tree.attributes)
    rounds.push_back(attribute->get_o_set()->get_datatype() == "float");
  for (const tree_node& node : tree.nodes) {
    value threshold;
    if (!node.is_leaf() && tree.attributes[node.attribute]->is_continuous())
      read(node.attribute, node.split.threshold.c_str(), threshold);
    thresholds.push_back(threshold.number);
  }
}

// Returns whether the text is a value of the attribute.
bool text_classifier::read(std::size_t attribute, const char* text, value& result) const {
  result = {};
  if (!tree.attributes[attribute]->is_continuous()) {
    const bool is_value = find_value(*tree.attributes[attribute], text, result.code);
    result.known = result.code != 0;
    return is_value;
  }
  result.known = read_known_number(text, result.number);
  if (rounds[attribute]) result.number = static_cast<double>(static_cast<float>(result.number));
  return result.known;
}

std::vector<double> text_classifier::operator()(const std::vector<const char*>& texts) {
  unfit_attributes.clear();
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (texts[i] == nullptr) {
      values[i] = {};
    } else if (!read(i, texts[i], values[i]) &&
               std::strcmp(texts[i], tree.attributes[i]->get_o_set()->get_null()) != 0) {
      unfit_attributes.push_back(i);
    }
  }
  return probabilities.of_case([&](std::size_t index) {
    const unsigned int attribute = tree.nodes[index].attribute;
    const value& tested = values[attribute];
    if (!tested.known) return every_branch;
    if (!tree.attributes[attribute]->is_continuous()) return tested.code;
    return tested.number <= thresholds[index] ? 1U : 2U;
  });
}

}  // namespace arbor::tree
