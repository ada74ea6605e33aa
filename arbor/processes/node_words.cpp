#include "arbor/processes/node_words.h"

#include <cstring>

namespace arbor::tree {

namespace {

std::uint32_t word_of(float number) {
  std::uint32_t word = 0;
  std::memcpy(&word, &number, sizeof word);
  return word;
}

float number_of(std::uint32_t word) {
  float number = 0;
  std::memcpy(&number, &word, sizeof number);
  return number;
}

}  // namespace

void put_nodes(const grown_nodes& grown, std::vector<std::uint32_t>& words) {
  words.push_back(static_cast<std::uint32_t>(grown.nodes.size()));
  for (std::size_t i = 0; i < grown.nodes.size(); ++i) {
    const tree_node& node = grown.nodes[i];
    for (const std::uint32_t word :
         {node.attribute, node.split.branches, node.first_child, node.child_count, node.branch,
          word_of(node.share), grown.cuts[i].low_code, grown.cuts[i].high_code,
          static_cast<std::uint32_t>(node.class_weights.size())})
      words.push_back(word);
    for (const auto& [entry, weight] : node.class_weights) {
      words.push_back(entry);
      words.push_back(word_of(weight));
    }
  }
}

grown_nodes take_nodes(const std::uint32_t*& words) {
  grown_nodes grown;
  const std::uint32_t count = *words++;
  grown.nodes.resize(count);
  grown.cuts.resize(count);
  for (std::uint32_t i = 0; i < count; ++i) {
    tree_node& node = grown.nodes[i];
    node.attribute = *words++;
    node.split.branches = *words++;
    node.first_child = *words++;
    node.child_count = *words++;
    node.branch = *words++;
    node.share = number_of(*words++);
    grown.cuts[i].low_code = *words++;
    grown.cuts[i].high_code = *words++;
    node.class_weights.resize(*words++);
    for (weighted_class& of_class : node.class_weights) {
      of_class.entry = *words++;
      of_class.weight = number_of(*words++);
    }
  }
  return grown;
}

}  // namespace arbor::tree
