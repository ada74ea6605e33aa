#include "arbor/tree/evaluation.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

namespace {

double share_of(double part, double whole) {
  return whole > 0 ? part / whole : 0;
}

}  // namespace

scored_case scored(std::size_t actual, const std::vector<double>& distribution, double weight) {
  constexpr double least_probability = 0.001;
  const double given = actual < distribution.size() ? distribution[actual] : 0;
  double difference = 1 - 2 * given;  // (1 - given)^2 is given^2 + this
  for (const double probability : distribution) difference += probability * probability;
  return {actual, likeliest_class(distribution), weight,
          -std::log2(std::max(given, least_probability)), difference};
}

void evaluation::add(const scored_case& added) {
  pairs.add(added.actual, added.predicted, added.weight);
  squared_weights += added.weight * added.weight;
  lost_bits += added.weight * added.lost_bits;
  squared_differences += added.weight * added.squared_difference;
}

void evaluation::add(const evaluation& other) {
  for (const auto& [pair, weight] : other.pairs.pairs()) pairs.add(pair.first, pair.second, weight);
  squared_weights += other.squared_weights;
  lost_bits += other.lost_bits;
  squared_differences += other.squared_differences;
}

evaluation evaluation::mean_of(unsigned int repeats) const {
  evaluation mean;
  for (const auto& [pair, weight] : pairs.pairs())
    mean.pairs.add(pair.first, pair.second, weight / repeats);
  mean.squared_weights = squared_weights / repeats;
  mean.lost_bits = lost_bits / repeats;
  mean.squared_differences = squared_differences / repeats;
  return mean;
}

std::vector<double> evaluation::sums() const {
  std::vector<double> sums{squared_weights, lost_bits, squared_differences, pairs.total(),
                           pairs.errors()};
  for (const auto& [pair, weight] : pairs.pairs()) {
    sums.push_back(static_cast<double>(pair.first));
    sums.push_back(static_cast<double>(pair.second));
    sums.push_back(weight);
  }
  return sums;
}

evaluation evaluation::with_sums(const std::vector<double>& sums) {
  evaluation result;
  if (sums.empty()) return result;
  constexpr std::size_t single_sums = 5;
  confusion_matrix::pair_weights cells;
  for (std::size_t i = single_sums; i < sums.size(); i += 3) {
    const confusion_matrix::pair_weights::key_type pair{static_cast<std::size_t>(sums[i]),
                                                        static_cast<std::size_t>(sums[i + 1])};
    cells.emplace_hint(cells.end(), pair, sums[i + 2]);
  }
  result.pairs = confusion_matrix(std::move(cells), sums[3], sums[4]);
  result.squared_weights = sums[0];
  result.lost_bits = sums[1];
  result.squared_differences = sums[2];
  return result;
}

double evaluation::accuracy() const {
  return share_of(pairs.total() - pairs.errors(), pairs.total());
}

double evaluation::accuracy_error() const {
  const double right = accuracy();
  return std::sqrt(share_of(right * (1 - right) * squared_weights, pairs.total() * pairs.total()));
}

double evaluation::log_loss() const {
  return share_of(lost_bits, pairs.total());
}

double evaluation::brier_score() const {
  return share_of(squared_differences, pairs.total());
}

double evaluation::commonest_class_error() const {
  double commonest = 0;
  for (const class_quality& quality : quality_by_class(pairs))
    commonest = std::max(commonest, quality.actual);
  return share_of(pairs.total() - commonest, pairs.total());
}

std::vector<class_quality> quality_by_class(const confusion_matrix& matrix) {
  std::map<std::size_t, class_quality> by_class;
  for (const auto& [pair, weight] : matrix.pairs()) {
    by_class[pair.first].actual += weight;
    by_class[pair.second].predicted += weight;
    if (pair.first == pair.second) by_class[pair.first].right += weight;
  }
  std::vector<class_quality> result;
  for (auto& [entry, quality] : by_class) {
    quality.entry = entry;
    result.push_back(quality);
  }
  return result;
}

}  // namespace arbor::tree
