// The weighted entropy sum, of which every measure of a split is made. Internal to the model.
//
//   entropy_sum<float, real_terms> branches(real_terms{});
//   for (float weight : branch_weights) branches.add(weight);
//   branches.value();
#ifndef ARBOR_MODEL_MEASURE_ENTROPY_H
#define ARBOR_MODEL_MEASURE_ENTROPY_H

#include <cstddef>

#include "arbor/model/measure/log_terms.h"

namespace arbor::impls {

// A float sum with one more term of an entropy.
inline float with_term(float sum, double term) {
  return static_cast<float>(static_cast<double>(sum) + term);
}

// The entropy, in bits, of a distribution of weights, times their sum S: S log2 S less the sum of
// all w log2 w (Shannon 1948). Both running sums are floats. Weights are float with real_terms; or
// unsigned int with whole_terms, whose integer sums are those that float would have as well, up to
// 2^24.
template <class Weight, class Terms>
class entropy_sum {
 public:
  explicit entropy_sum(const Terms& of_weights) : term(of_weights) {}

  void add(Weight weight) {
    sum += weight;
    terms = with_term(terms, term(weight));
  }

  Weight weight() const { return sum; }
  double value() const { return term(sum) - static_cast<double>(terms); }

 private:
  const Terms& term;
  Weight sum = 0;
  float terms = 0;
};

template <class Weight, class Terms, class Stored>
double weighted_entropy(const Terms& terms, const Stored* weights, std::size_t count) {
  entropy_sum<Weight, Terms> result(terms);
  for (std::size_t i = 0; i < count; ++i) result.add(static_cast<Weight>(weights[i]));
  return result.value();
}

}  // namespace arbor::impls

#endif
