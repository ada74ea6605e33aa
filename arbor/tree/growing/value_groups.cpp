#include "arbor/tree/growing/value_groups.h"

#include <utility>

#include "arbor/model/code_readers.h"

namespace arbor::tree {

value_groups::value_groups(const node_cases& node, std::size_t column_index)
    : rows(*node.rows),
      before_first(node.ranges[column_index].first - 1),
      by_value(node.cases->size()),
      ends(node.ranges[column_index].second - before_first, 0) {
  impls::with_codes(*rows.columns()[column_index], [&](auto code_at) {
    const auto value_at = [&](const auto& weighted) {
      const unsigned int code = code_at(weighted.first);
      return code == 0 ? 0 : code - before_first;
    };
    // First the number of the cases of each value, then the place of its next case; that moves to
    // the end of the value's cases.
    for (const auto& weighted : *node.cases) ++ends[value_at(weighted)];
    std::size_t before = 0;
    for (std::size_t& place : ends) before += std::exchange(place, before);
    for (const auto& weighted : *node.cases) by_value[ends[value_at(weighted)]++] = weighted;
  });
}

std::vector<std::uint64_t> value_groups::counts() const {
  std::vector<std::uint64_t> result(values());
  for (std::size_t value = 0; value < values(); ++value)
    result[value] = ends[value] - begin_of(value);
  return result;
}

void value_groups::add_weights(std::vector<float>& sums) const {
  for (std::size_t value = 0; value < values(); ++value) {
    float sum = sums[value];
    for (std::size_t i = begin_of(value); i < ends[value]; ++i) sum += by_value[i].second;
    sums[value] = sum;
  }
}

void value_groups::add_known(std::size_t value, impls::w_sequence& cases) const {
  const auto begin = by_value.begin();
  cases.insert(cases.end(), begin + static_cast<std::ptrdiff_t>(begin_of(value)),
               begin + static_cast<std::ptrdiff_t>(ends[value]));
}

void value_groups::add_unknown(float share, impls::w_sequence& cases) const {
  for (std::size_t i = 0; i < ends[0]; ++i) {
    const impls::w_sequence::value_type part{by_value[i].first, share * by_value[i].second};
    if (!is_sliver(part, rows)) cases.push_back(part);
  }
}

std::vector<node_split::branch> branches_by_value(const std::vector<std::uint64_t>& counts,
                                                  const std::vector<float>& weights,
                                                  float node_weight, unsigned int first_code) {
  const double known_weight = static_cast<double>(node_weight) - static_cast<double>(weights[0]);
  std::vector<node_split::branch> branches;
  for (std::size_t value = 1; value < counts.size(); ++value) {
    if (counts[value] == 0) continue;
    branches.push_back({first_code + static_cast<unsigned int>(value) - 1,
                        static_cast<float>(static_cast<double>(weights[value]) / known_weight),
                        counts[value]});
  }
  return branches;
}

}  // namespace arbor::tree
