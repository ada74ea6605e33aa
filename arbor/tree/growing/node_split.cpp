#include "arbor/tree/growing/node_split.h"

#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

using impls::w_sequence;

node_split::node_split(node_cases of_node, float node_weight, const rated_test& test)
    : node(std::move(of_node)), weight(node_weight), column_index(test.column_index) {
  if (attribute().is_discrete()) {
    divide_by_value();
    return;
  }
  const unsigned int threshold = threshold_code(attribute(), cut_of(test.rating));
  sides = divide_at_threshold(node, weight, column_index, threshold);
  node.cases.reset();
  all_branches = {{1, sides[0].cases->size(), 0}, {2, sides[1].cases->size(), 0}};
}

// Sorts the cases by value; cases of the same value keep their order.
void node_split::divide_by_value() {
  const w_sequence& cases = *node.cases;
  const code_range& range = node.ranges[column_index];
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
  for (std::size_t value = 1; value < next.size(); ++value) {
    const std::size_t size = next[value] - next[value - 1];
    if (size == 0) continue;
    all_branches.push_back(
        {static_cast<unsigned int>(value) + before_first, size, next[value - 1]});
  }
  node.cases = std::move(by_value);
}

node_cases node_split::take_cases(const branch& taken, float& share) {
  side_cases part =
      attribute().is_discrete() ? cases_of_value(taken) : std::move(sides[taken.number - 1]);
  share = part.share;
  node_cases result{node.rows, std::move(part.cases), node.ranges, node.depth + 1};
  result.ranges[column_index] = part.range;
  return result;
}

// Reads the cases of this value and the unknown ones alone, not those of all other values. The
// weights are float sums in the order of the cases, as those of a column's partition.
side_cases node_split::cases_of_value(const branch& taken) const {
  const auto first = node.cases->begin();
  const auto unknown_end = first + static_cast<std::ptrdiff_t>(unknown_count);
  const auto begin = first + static_cast<std::ptrdiff_t>(taken.first_case);
  const auto end = begin + static_cast<std::ptrdiff_t>(taken.size);
  float unknown_weight = 0;
  for (auto c = first; c != unknown_end; ++c) unknown_weight += c->second;
  float branch_weight = 0;
  for (auto c = begin; c != end; ++c) branch_weight += c->second;
  const double known_weight = static_cast<double>(weight) - static_cast<double>(unknown_weight);
  const auto share = static_cast<float>(static_cast<double>(branch_weight) / known_weight);

  auto cases = std::make_shared<w_sequence>();
  cases->reserve(taken.size + unknown_count);
  cases->assign(begin, end);
  for (auto c = first; c != unknown_end; ++c) {
    const w_sequence::value_type part{c->first, share * c->second};
    if (!is_sliver(part, *node.rows)) cases->push_back(part);
  }
  if (cases->size() < cases->capacity() / 2) cases->shrink_to_fit();
  return {std::move(cases), share, {taken.number, taken.number + 1}};
}

}  // namespace arbor::tree
