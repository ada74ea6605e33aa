#include "arbor/model/measure/cut_search.h"

#include <algorithm>

namespace arbor::impls {

float least_side_weight(float known_weight, unsigned int classes, float min_weight) {
  constexpr float most = 25.0F;
  const auto tenth_per_class =
      static_cast<float>(0.1 * static_cast<double>(known_weight) / classes);
  if (min_weight >= tenth_per_class) return min_weight;
  return std::min(tenth_per_class, most);
}

float cut_point_penalty(unsigned int candidates, float total_weight, std::size_t case_count,
                        const options* opts) {
  const bool by_case_count = opts != nullptr && opts->penalty_by_case_count;
  const double denominator = by_case_count ? static_cast<double>(static_cast<int>(case_count))
                                           : static_cast<double>(total_weight);
  const float bits = candidates == 0 ? 0.0F : binary_log(candidates);
  return static_cast<float>(static_cast<double>(bits) / denominator);
}

}  // namespace arbor::impls
