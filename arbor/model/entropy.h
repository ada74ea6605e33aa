// The weighted entropy sum, of which every measure of a split is made. Internal to the model.
#ifndef ARBOR_MODEL_ENTROPY_H
#define ARBOR_MODEL_ENTROPY_H

#include <cstddef>

namespace arbor::impls {

// The binary logarithm, rounded to float.
float binary_log(double x);

// The entropy, in bits, of a distribution of weights, times their sum S: S log2 S less the sum of all w log2 w, where
// the term of what is not positive is 0 (Shannon 1948). Both running sums are floats; the result is not rounded.
double weighted_entropy(const float* weights, std::size_t count);

}  // namespace arbor::impls

#endif
