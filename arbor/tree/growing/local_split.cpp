#include "arbor/tree/growing/local_split.h"

#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/tree/growing/column_partition.h"
#include "arbor/tree/growing/local_node.h"
#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

local_split::local_split(node_cases of_node, float node_weight, const rated_test& test,
                         const grow_options& chosen_options)
    : node_split(test), options(chosen_options), node(std::move(of_node)), weight(node_weight) {
  if (attribute().is_discrete()) {
    groups.emplace(node, chosen.column_index);
    const std::vector<std::uint64_t> counts = groups->counts();
    std::vector<float> weights(groups->values(), 0.0F);
    groups->add_weights(weights);
    all_branches = branches_by_value(counts, weights, weight, groups->code_of(1));
    unknown = counts[0];
  } else {
    divide_at_threshold();
  }
  node.cases.reset();
}

void local_split::divide_at_threshold() {
  const unsigned int threshold = threshold_code(attribute(), cut_of(chosen.rating));
  const side_weights weights = weigh_sides(node, chosen.column_index, threshold, {});
  if (impls::is_library_column(attribute())) {
    sides = tree::divide_at_threshold(node, chosen.column_index, threshold, weights.known_cases,
                                      weights.sides(threshold, weight));
  } else {
    for (unsigned int number : {1U, 2U})
      sides[number - 1] = partition_by_column(*node.rows, *node.cases, weight, chosen, number);
  }
  for (unsigned int number : {1U, 2U})
    all_branches.push_back({number, sides[number - 1].share, weights.known_cases[number - 1]});
  unknown = weights.unknown_cases;
}

std::unique_ptr<growing_node> local_split::take(const branch& taken) {
  side_cases part = groups ? cases_of_value(taken) : std::move(sides[taken.number - 1]);
  node_cases result{node.rows, std::move(part.cases), node.ranges, node.depth + 1};
  result.ranges[chosen.column_index] = part.range;
  return std::make_unique<local_node>(std::move(result), options);
}

// Reads the cases of this value and the unknown ones alone, not those of all other values.
side_cases local_split::cases_of_value(const branch& taken) const {
  auto cases = std::make_shared<impls::w_sequence>();
  cases->reserve(taken.known_cases + unknown);
  groups->add_known(groups->value_of(taken.number), *cases);
  if (!impls::is_library_column(attribute())) {
    groups->add_unknown(1, *cases);
    return partition_by_column(*node.rows, *cases, weight, chosen, taken.number);
  }
  groups->add_unknown(taken.share, *cases);
  if (cases->size() < cases->capacity() / 2) cases->shrink_to_fit();
  return {std::move(cases), taken.share, {taken.number, taken.number + 1}};
}

}  // namespace arbor::tree
