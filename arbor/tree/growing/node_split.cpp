#include "arbor/tree/growing/node_split.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/case_partition.h"

namespace arbor::tree {

using impls::w_sequence;

node_split::node_split(node_cases of_node, float node_weight, const rated_test& test)
    : node(std::move(of_node)), weight(node_weight), column_index(test.column_index) {
  split.branches = test.rating.branches;
  if (attribute().is_discrete()) {
    divide_by_value();
    return;
  }
  const cut place = cut_of(test.rating);
  threshold = threshold_code(attribute(), place);
  if (!impls::is_library_column(attribute())) split.threshold = threshold_text(attribute(), place);
  divide_in_two();
}

void node_split::divide_in_two() {
  std::size_t low = 0;
  impls::with_codes(attribute(), [&](auto code_of) {
    for (const auto& weighted : *node.cases) low += code_of(weighted.first) <= threshold ? 1 : 0;
  });
  all_branches = {{1, 0, low}, {2, low, node.cases->size()}};
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
    if (next[value] == next[value - 1]) continue;
    all_branches.push_back(
        {static_cast<unsigned int>(value) + before_first, next[value - 1], next[value]});
  }
  node.cases = std::move(by_value);
}

node_cases node_split::cases_of(const branch& taken, float& share) const {
  node_cases result{node.rows, nullptr, node.ranges, node.depth + 1};
  code_range& range = result.ranges[column_index];
  std::unique_ptr<w_sequence> cases = attribute().is_discrete()
                                          ? cases_of_value(taken, share, range)
                                          : cases_of_side(taken.number, share, range);
  if (attribute().get_o_set()->contains_null()) drop_slivers(*cases);
  result.cases = std::move(cases);
  return result;
}

// Reads the cases of this value and the unknown ones alone, not those of all other values.
std::unique_ptr<w_sequence> node_split::cases_of_value(const branch& taken, float& share,
                                                       code_range& range) const {
  const auto first = node.cases->begin();
  auto begin = first + static_cast<std::ptrdiff_t>(taken.first_case);
  auto end = first + static_cast<std::ptrdiff_t>(taken.end_case);
  w_sequence with_unknown;
  if (unknown_count > 0) {
    with_unknown.assign(begin, end);
    with_unknown.insert(with_unknown.end(), first,
                        first + static_cast<std::ptrdiff_t>(unknown_count));
    begin = with_unknown.begin();
    end = with_unknown.end();
  }
  return std::unique_ptr<w_sequence>(
      attribute().partition(begin, end, taken.number, weight, share, range, split));
}

std::unique_ptr<w_sequence> node_split::cases_of_side(unsigned int number, float& share,
                                                      code_range& range) const {
  std::unique_ptr<w_sequence> cases = partitioned_side(number, share, range);
  if (attribute().get_o_set()->contains_null()) share_out_unknown(*cases, number, share);
  return cases;
}

std::unique_ptr<w_sequence> node_split::partitioned_side(unsigned int number, float& share,
                                                         code_range& range) const {
  const auto begin = node.cases->begin();
  const auto end = node.cases->end();
  if (!impls::is_library_column(attribute())) {
    return std::unique_ptr<w_sequence>(
        attribute().partition(begin, end, number, weight, share, range, split));
  }
  impls::branch_cases result;
  impls::with_codes(attribute(), [&](auto code_of) {
    result = impls::cases_of_side(begin, end, number, weight, code_of, threshold, range);
  });
  share = result.ratio;
  return std::move(result.cases);
}

// Weighs the unknown cases on a side of the threshold anew, by the side's share of the known weight
// alone. A column's partition counts them in the low branch's weight as well, so that each would be
// worth more than one case.
void node_split::share_out_unknown(w_sequence& cases, unsigned int number, float& share) const {
  std::array<double, 3> weights{};  // of the unknown cases and of both sides
  impls::with_codes(attribute(), [&](auto code_of) {
    const auto side_of = [&](const auto& weighted) -> std::size_t {
      const unsigned int code = code_of(weighted.first);
      return code == 0 ? 0 : code <= threshold ? 1 : 2;
    };
    for (const auto& weighted : *node.cases)
      weights[side_of(weighted)] += static_cast<double>(weighted.second);
    if (!(weights[0] > 0)) return;
    share = static_cast<float>(weights[number] / (weights[1] + weights[2]));
    auto whole = node.cases->begin();  // both are in the same order
    for (auto& part : cases) {
      if (side_of(part) != 0) continue;
      const auto is_this = [&](const auto& weighted) { return weighted.first == part.first; };
      whole = std::find_if(whole, node.cases->end(), is_this);
      if (whole == node.cases->end())
        throw std::logic_error("a column's partition has not kept the order of its cases");
      part.second = share * whole->second;
    }
  });
}

// Leaves out cases that have little of their weight left. Each would take the time and the memory
// of a whole case, in many branches at once, and its weight might end as 0.
void node_split::drop_slivers(w_sequence& cases) const {
  constexpr float least_part = 1.0F / 1024;
  const auto is_sliver = [&](const auto& weighted) {
    return weighted.second < least_part * node.rows->weight(weighted.first) ||
           !(weighted.second > 0);
  };
  cases.erase(std::remove_if(cases.begin(), cases.end(), is_sliver), cases.end());
  if (cases.size() < cases.capacity() / 2) cases.shrink_to_fit();
}

}  // namespace arbor::tree
