#include "arbor/tree/division.h"

#include <algorithm>
#include <utility>

#include "arbor/model/code_readers.h"

namespace arbor::tree {

using impls::column;
using impls::w_sequence;

division::division(node_cases of_node, float node_weight, std::size_t tested_column,
                   column::partition_desc chosen_split)
    : node(std::move(of_node)),
      weight(node_weight),
      column_index(tested_column),
      split(std::move(chosen_split)) {
  if (attribute().is_continuous()) {
    divide_in_two();
  } else {
    divide_by_value();
  }
}

void division::divide_in_two() {
  const unsigned int threshold = attribute().get_index(split.threshold.c_str());
  std::size_t low = 0;
  impls::with_codes(attribute(), [&](auto code_of) {
    for (const auto& weighted : *node.cases) low += code_of(weighted.first) <= threshold ? 1 : 0;
  });
  all_branches = {{1, 0, low}, {2, low, node.cases->size()}};
}

// Puts the cases in the order of their values; those of one value keep theirs.
void division::divide_by_value() {
  const w_sequence& cases = *node.cases;
  const code_range& range = node.ranges[column_index];
  const unsigned int before_first = range.first - 1;
  auto by_value = std::make_shared<w_sequence>(cases.size());
  // The place of the next case of each value, the unknown one first.
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
    if (next[value] == next[value - 1]) continue;
    all_branches.push_back(
        {static_cast<unsigned int>(value) + before_first, next[value - 1], next[value]});
  }
  node.cases = std::move(by_value);
}

node_cases division::cases_of(const branch& taken, float& share) const {
  auto begin = node.cases->begin();
  auto end = node.cases->end();
  w_sequence of_value;
  if (!attribute().is_continuous()) {  // or the cases of all other values would be passed over
    end = begin + static_cast<std::ptrdiff_t>(taken.end_case);
    begin += static_cast<std::ptrdiff_t>(taken.first_case);
    if (unknown_count > 0) {
      of_value.assign(begin, end);
      of_value.insert(of_value.end(), node.cases->begin(),
                      node.cases->begin() + static_cast<std::ptrdiff_t>(unknown_count));
      begin = of_value.begin();
      end = of_value.end();
    }
  }
  node_cases result{node.rows, nullptr, node.ranges, node.depth + 1};
  std::unique_ptr<w_sequence> cases(attribute().partition(begin, end, taken.number, weight, share,
                                                          result.ranges[column_index], split));
  if (attribute().get_o_set()->contains_null()) drop_slivers(*cases);
  result.cases = std::move(cases);
  return result;
}

// Leaves out what has become a small part of a case: it would take the time and the room of a whole
// one, times as many as there are branches on the way, and its weight might end as 0.
void division::drop_slivers(w_sequence& cases) const {
  constexpr float least_part = 1.0F / 1024;
  const auto is_sliver = [&](const auto& weighted) {
    return weighted.second < least_part * node.rows->weight(weighted.first) ||
           !(weighted.second > 0);
  };
  cases.erase(std::remove_if(cases.begin(), cases.end(), is_sliver), cases.end());
  if (cases.size() < cases.capacity() / 2) cases.shrink_to_fit();
}

}  // namespace arbor::tree
