#include "arbor/processes/shared_summary.h"

#include <cmath>

namespace arbor::tree {

namespace {

// Whether the weights of all processes can be added up in any order: sums of whole numbers below
// 2^53 are exact.
bool has_exact_sums(process_group& group, const impls::w_sequence& own_cases) {
  constexpr double most = 0x1p53;
  std::vector<double> sums(1, 0.0);
  for (const auto& [row, weight] : own_cases) {
    sums[0] += static_cast<double>(weight);
    if (weight != std::trunc(weight)) sums[0] = most;
  }
  group.add_up(sums);
  return sums[0] < most;
}

}  // namespace

case_summary shared_summary(process_group& group, const table& summed,
                            const impls::w_sequence& own_cases) {
  std::vector<std::uint64_t> counts{own_cases.size(), 0};
  for (const auto& column : summed.columns) {
    if (is_attribute(*column)) counts[1] += unknown_cells(*column, own_cases);
  }
  group.add_up(counts);

  std::vector<double> weights(summed.class_column().get_distinct(), 0.0);
  group.add_in_order(weights, has_exact_sums(group, own_cases), [&](std::vector<double>& sums) {
    add_class_weights(summed.class_column(), own_cases, sums);
  });

  case_summary result;
  result.rows = counts[0];
  result.unknown_cells = counts[1];
  result.weight = static_cast<float>(weights[0]);
  result.class_weights.assign(weights.begin() + 1, weights.end());
  return result;
}

}  // namespace arbor::tree
