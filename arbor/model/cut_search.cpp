#include "arbor/model/cut_search.h"

#include <algorithm>
#include <array>

#include "arbor/model/entropy.h"

namespace arbor::impls {

namespace {

double entropy_of(const cut_search::class_weights& weights) {
  return weighted_entropy(weights.data() + 1, weights.size() - 1);
}

}  // namespace

float least_side_weight(float known_weight, unsigned int classes, float min_weight) {
  constexpr float most = 25.0F;
  const float tenth_per_class = static_cast<float>(0.1 * static_cast<double>(known_weight) / classes);
  if (min_weight >= tenth_per_class) return min_weight;
  return std::min(tenth_per_class, most);
}

float cut_point_penalty(unsigned int candidates, float total_weight, std::size_t case_count, const options* opts) {
  const bool by_case_count = opts != nullptr && opts->penalty_by_case_count;
  const double denominator =
      by_case_count ? static_cast<double>(static_cast<int>(case_count)) : static_cast<double>(total_weight);
  const float bits = candidates == 0 ? 0.0F : binary_log(candidates);
  return static_cast<float>(static_cast<double>(bits) / denominator);
}

cut_search::cut_search(const class_weights& known, float unknown, float total, float min_weight)
    : total_weight(total),
      unknown_weight(unknown),
      known_weight(total - unknown),
      is_splittable(2.0 * static_cast<double>(min_weight) <= static_cast<double>(known_weight)),
      info(static_cast<float>(entropy_of(known) / static_cast<double>(known_weight))),
      least_side(least_side_weight(known_weight, static_cast<unsigned int>(known.size() - 1), min_weight)) {}

bool cut_search::evaluate(const class_weights& left, const class_weights& right, float left_weight) {
  const double known = static_cast<double>(known_weight);
  const float value_entropy = static_cast<float>(entropy_of(left) + entropy_of(right));
  const float gain = static_cast<float>((static_cast<double>(info) - static_cast<double>(value_entropy) / known) *
                                        (known / (static_cast<double>(unknown_weight) + known)));
  if (!(gain > best_gain)) return false;
  best_gain = gain;
  const std::array<float, 3> branches{unknown_weight, left_weight, known_weight - left_weight};
  best_split_info = static_cast<float>(weighted_entropy(branches.data(), branches.size()));
  return true;
}

bool cut_search::conclude(std::size_t case_count, const options* opts, column::splitting_desc& result) const {
  const float penalty = cut_point_penalty(candidates, total_weight, case_count, opts);
  if (!(penalty < best_gain)) return false;
  result.gain = best_gain - penalty;
  result.split_info = best_split_info / total_weight;
  return true;
}

}  // namespace arbor::impls
