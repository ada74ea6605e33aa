// The weighted entropy sum, from which every measure of a split is made, and the terms
// x log2 x that it adds up. Internal to the model.
//
//   const real_terms terms;
//   entropy_sum<float, real_terms> branches(terms);
//   for (float weight : branch_weights) branches.add(weight);
//   branches.value();
#ifndef ARBOR_MODEL_MEASURE_ENTROPY_H
#define ARBOR_MODEL_MEASURE_ENTROPY_H

#include <cstddef>

namespace arbor::impls {

// The binary logarithm, rounded to float. The rounding hides that the C library's logarithm may
// differ in its last bit between processors and builds (glibc 2.36: checked for all positive
// floats). Another library's differences may be larger.
float binary_log(double x);

// x times its binary logarithm, not rounded; 0 unless x is positive.
double log_term(float x);

// A table of log_term for the whole numbers from 0 to at least `greatest`, or null: a table is made
// on first use, if `terms` look-ups or so make it worth its cost and there is memory for it. It
// then stays unchanged until the process ends. Several threads may ask at once.
const double* whole_number_terms(unsigned int greatest, unsigned long long terms);

// The terms of arbitrary weights, and those of whole numbers within a table.
struct real_terms {
  double operator()(float weight) const { return log_term(weight); }
};
struct whole_terms {
  const double* table;
  double operator()(unsigned int weight) const { return table[weight]; }
};

// A float sum of terms, after one more.
inline float with_term(float sum, double term) {
  return static_cast<float>(static_cast<double>(sum) + term);
}

// The entropy of a distribution of weights in bits, times their sum S: S log2 S minus the sum of
// all w log2 w (C. E. Shannon, Bell System Technical Journal 27 (1948), 379-423). Both running sums
// are floats. Weights are float with real_terms, or unsigned int with whole_terms: sums of up to
// 2^24 are the same in either.
template <class Weight, class Terms>
class entropy_sum {
 public:
  // `of_weights` must outlive the sum.
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
