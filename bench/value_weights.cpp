#include "bench/value_weights.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace arbor::bench {

value_weights::value_weights(const std::vector<float>& table, std::size_t stride) : all(stride) {
  for (std::size_t at = 0; at < table.size(); at += stride) {
    const class_weights weights(table.data() + at, table.data() + at + stride);
    if (std::all_of(weights.begin(), weights.end(), [](double w) { return w == 0; })) continue;
    values.push_back(weights);
    for (std::size_t c = 0; c < stride; ++c) all[c] += weights[c];
  }
}

double value_weights::entropy(const class_weights& weights) {
  double sum = 0;
  double terms = 0;
  for (const double w : weights) {
    sum += w;
    if (w > 0) terms += w * std::log2(w);
  }
  return sum > 0 ? sum * std::log2(sum) - terms : 0;
}

double value_weights::gain_by_value() const {
  double left_over = 0;
  for (const class_weights& weights : values) left_over += entropy(weights);
  return (entropy(all) - left_over) / std::accumulate(all.begin(), all.end(), 0.0);
}

double value_weights::gain_at_threshold() const {
  class_weights left(all.size());
  class_weights right = all;
  double left_over = entropy(all);
  for (const class_weights& weights : values) {
    for (std::size_t c = 0; c < all.size(); ++c) {
      left[c] += weights[c];
      right[c] -= weights[c];
    }
    left_over = std::min(left_over, entropy(left) + entropy(right));
  }
  return (entropy(all) - left_over) / std::accumulate(all.begin(), all.end(), 0.0);
}

}  // namespace arbor::bench
