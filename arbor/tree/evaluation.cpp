#include "arbor/tree/evaluation.h"

#include <algorithm>
#include <cmath>
#include <map>

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
