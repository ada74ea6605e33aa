#include "arbor/tree/growing/node_split.h"

#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/tree/growing/column_partition.h"
#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

namespace {

using impls::w_sequence;

// The weight of some cases as a float sum in their order, as in a column's partition.
float float_weight(const w_sequence& cases, std::size_t first, std::size_t count) {
  float sum = 0;
  for (std::size_t i = first; i < first + count; ++i) sum += cases[i].second;
  return sum;
}

}  // namespace

node_split::node_split(node_cases of_node, float node_weight, const rated_test& chosen)
    : node(std::move(of_node)), weight(node_weight), chosen_test(chosen) {
  if (attribute().is_discrete()) {
    divide_by_value();
  } else {
    divide_at_threshold();
    node.cases.reset();
  }
}

void node_split::divide_at_threshold() {
  const unsigned int threshold = threshold_code(attribute(), cut_of(chosen_test.rating));
  if (impls::is_library_column(attribute())) {
    sides = tree::divide_at_threshold(node, weight, chosen_test.column_index, threshold);
  } else {
    for (unsigned int number : {1U, 2U}) {
      sides[number - 1] = partition_by_column(*node.rows, *node.cases, weight, chosen_test, number);
    }
  }
  for (unsigned int number : {1U, 2U}) {
    const side_cases& side = sides[number - 1];
    all_branches.push_back({number, side.share, side.cases->size(), 0});
  }
}

// Sorts the cases by value; cases of the same value keep their order.
void node_split::divide_by_value() {
  const w_sequence& cases = *node.cases;
  const code_range& range = node.ranges[chosen_test.column_index];
  const unsigned int before_first = range.first - 1;
  auto by_value = std::make_shared<w_sequence>(cases.size());
  // By value, the unknown one first: the number of its cases, and then the place of its next case.
  std::vector<std::size_t> next(range.second - before_first, 0);
  impls::with_codes(attribute(), [&](auto code_of) {
    const auto value_of = [&](const auto& weighted) {
      const unsigned int code = code_of(weighted.first);
      return code == 0 ? 0 : code - before_first;
    };
    for (const auto& weighted : cases) ++next[value_of(weighted)];
    std::size_t before = 0;
    for (std::size_t& place : next) before += std::exchange(place, before);
    for (const auto& weighted : cases) (*by_value)[next[value_of(weighted)]++] = weighted;
  });
  // Each place has moved to the end of its value's cases.
  unknown_count = next[0];
  const double known_weight =
      static_cast<double>(weight) - static_cast<double>(float_weight(*by_value, 0, unknown_count));
  for (std::size_t value = 1; value < next.size(); ++value) {
    const std::size_t first = next[value - 1];
    const std::size_t size = next[value] - first;
    if (size == 0) continue;
    const auto value_weight = static_cast<double>(float_weight(*by_value, first, size));
    all_branches.push_back({static_cast<unsigned int>(value) + before_first,
                            static_cast<float>(value_weight / known_weight), size, first});
  }
  node.cases = std::move(by_value);
}

node_cases node_split::take_cases(const branch& taken) {
  side_cases part =
      attribute().is_discrete() ? cases_of_value(taken) : std::move(sides[taken.number - 1]);
  node_cases result{node.rows, std::move(part.cases), node.ranges, node.depth + 1};
  result.ranges[chosen_test.column_index] = part.range;
  return result;
}

// Reads the cases of this value and the unknown ones alone, not those of all other values.
side_cases node_split::cases_of_value(const branch& taken) const {
  const auto first = node.cases->begin();
  const auto unknown_end = first + static_cast<std::ptrdiff_t>(unknown_count);
  const auto begin = first + static_cast<std::ptrdiff_t>(taken.first);
  auto cases = std::make_shared<w_sequence>();
  cases->reserve(taken.size + unknown_count);
  cases->assign(begin, begin + static_cast<std::ptrdiff_t>(taken.size));
  if (!impls::is_library_column(attribute())) {
    cases->insert(cases->end(), first, unknown_end);
    return partition_by_column(*node.rows, *cases, weight, chosen_test, taken.number);
  }
  for (auto c = first; c != unknown_end; ++c) {
    const w_sequence::value_type part{c->first, taken.share * c->second};
    if (!is_sliver(part, *node.rows)) cases->push_back(part);
  }
  if (cases->size() < cases->capacity() / 2) cases->shrink_to_fit();
  return {std::move(cases), taken.share, {taken.number, taken.number + 1}};
}

}  // namespace arbor::tree
