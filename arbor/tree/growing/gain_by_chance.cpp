#include "arbor/tree/growing/gain_by_chance.h"

#include <cmath>

#include "arbor/model/measure/entropy.h"

namespace arbor::tree {

gain_by_chance::gain_by_chance(const std::vector<weighted_class>& class_weights) {
  double sum = 0;
  for (const weighted_class& c : class_weights) sum += static_cast<double>(c.weight);
  for (const weighted_class& c : class_weights)
    class_shares.push_back(static_cast<double>(c.weight) / sum);
}

// A case of a class with the share p finds 1 + x cases of its class among the n of its value; x is
// binomial with the mean (n - 1) p. The gain of the case is log2((1 + x) / (n p)). This is its mean
// by the Taylor series about the mean of x, up to the square.
double gain_by_chance::of_cases(double cases) const {
  constexpr double natural_log_of_2 = 0.6931471805599453;
  const double others = cases - 1;
  double gain = 0;
  for (const double p : class_shares) {
    const double of_class = 1 + others * p;
    const double variance = others * p * (1 - p);
    const double bits = static_cast<double>(impls::binary_log(of_class / (cases * p))) -
                        variance / (2 * of_class * of_class * natural_log_of_2);
    gain += p * bits;
  }
  return gain;
}

}  // namespace arbor::tree
