#include "arbor/model/entropy.h"

#include <cmath>

#include "arbor/model/weight_type.h"

namespace arbor::impls {

namespace {

double weight_times_log(float weight) {
  if (!(weight > 0)) return 0;
  return static_cast<double>(weight) * static_cast<double>(binary_log(static_cast<double>(weight)));
}

}  // namespace

float binary_log(double x) {
  return static_cast<float>(std::log(x) / static_cast<double>(weight_type::Log2));
}

double weighted_entropy(const float* weights, std::size_t count) {
  float sum = 0;
  float terms = 0;
  for (std::size_t i = 0; i < count; ++i) {
    sum += weights[i];
    terms = static_cast<float>(static_cast<double>(terms) + weight_times_log(weights[i]));
  }
  return weight_times_log(sum) - static_cast<double>(terms);
}

}  // namespace arbor::impls
