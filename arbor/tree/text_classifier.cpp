#include "arbor/tree/text_classifier.h"

#include <cmath>
#include <cstring>
#include <string>

#include "arbor/table/value_text.h"
#include "arbor/utils/number_text.h"
#include "arbor/utils/string_util.h"

namespace arbor::tree {

namespace {

using impls::column;

// Numbers as the domain of a continuous attribute holds them.
template <class Integer>
double read_integer(const char* text) {
  Integer number = 0;
  strata::util::string_util::str2int(text, number);
  return static_cast<double>(number);
}

double read_float(const char* text) {
  double number = 0;
  if (!strata::util::read_number(text, number) || std::isnan(number))
    throw std::runtime_error("not a number");
  return static_cast<double>(static_cast<float>(number));
}

}  // namespace

text_classifier::text_classifier(const decision_tree& grown, leaf_estimate estimate)
    : tree(grown), probabilities(grown, estimate), values(grown.attributes.size()) {
  for (const auto& attribute : tree.attributes) readers.push_back(reader_for(*attribute));
  for (const tree_node& node : tree.nodes) {
    const bool is_cut = !node.is_leaf() && tree.attributes[node.attribute]->is_continuous();
    thresholds.push_back(is_cut ? readers[node.attribute](node.split.threshold.c_str()) : 0);
  }
}

text_classifier::number_reader text_classifier::reader_for(const column& attribute) {
  const std::string data_type = attribute.get_o_set()->get_datatype();
  if (data_type == "integer") return read_integer<int>;
  if (data_type == "uinteger") return read_integer<unsigned int>;
  return read_float;
}

text_classifier::value text_classifier::read(std::size_t attribute, const char* text) const {
  value result;
  if (text == nullptr) return result;
  if (tree.attributes[attribute]->is_continuous()) {
    result.number = readers[attribute](text);
    result.known = true;
  } else {
    result.known = code_of_text(*tree.attributes[attribute], text, result.code);
  }
  return result;
}

std::vector<double> text_classifier::operator()(const std::vector<const char*>& texts) {
  for (std::size_t i = 0; i < values.size(); ++i) {
    try {
      values[i] = read(i, texts[i]);
    } catch (const std::runtime_error&) {
      // The tree's domains keep the text that stood for the unknown value when it was grown.
      if (std::strcmp(texts[i], tree.attributes[i]->get_o_set()->get_null()) != 0)
        throw unfit_text(i);
      values[i] = {};
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
