#include "arbor/tree/text_classifier.h"

#include <cmath>
#include <cstring>

namespace arbor::tree {

namespace {

std::vector<value_reader> readers_of(const decision_tree& tree, const number_form& form) {
  std::vector<value_reader> readers;
  for (const auto& attribute : tree.attributes) readers.emplace_back(*attribute, form);
  return readers;
}

}  // namespace

std::vector<double> threshold_numbers(const decision_tree& tree) {
  std::vector<double> thresholds;
  const std::vector<value_reader> readers = readers_of(tree, {});
  for (const tree_node& node : tree.nodes) {
    const bool is_continuous = !node.is_leaf() && tree.attributes[node.attribute]->is_continuous();
    thresholds.push_back(
        is_continuous ? readers[node.attribute].number(node.split.threshold.c_str()) : 0);
  }
  return thresholds;
}

text_classifier::text_classifier(const decision_tree& grown, leaf_estimate estimate,
                                 const number_form& form)
    : tree(&grown),
      readers(readers_of(grown, form)),
      predict(std::make_shared<class_probabilities>(grown, threshold_numbers(grown), estimate)),
      values(readers.size()) {}

prediction& text_classifier::operator()(const std::vector<cell_text>& texts) {
  unfit_attributes.clear();
  for (std::size_t i = 0; i < values.size(); ++i) {
    values[i] = unknown_value;
    if (texts[i].begin == nullptr) continue;
    values[i] = readers[i](texts[i]);
    const bool is_unfit =
        std::isnan(values[i]) &&
        std::strcmp(texts[i].begin, tree->attributes[i]->get_o_set()->get_null()) != 0;
    if (is_unfit) unfit_attributes.push_back(i);
  }
  return predict([&](unsigned int attribute) { return values[attribute]; });
}

}  // namespace arbor::tree
