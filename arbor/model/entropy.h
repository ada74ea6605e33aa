// The weighted entropy sum, of which every measure of a split is made. Internal to the model.
#ifndef ARBOR_MODEL_ENTROPY_H
#define ARBOR_MODEL_ENTROPY_H

#include <cstddef>

namespace arbor::impls {

// The binary logarithm, rounded to float. The rounding hides that the C library's logarithm may differ in its last bit
// from one processor and build to the next (glibc 2.36: checked for the positive floats). Another library's may not be
// hidden.
float binary_log(double x);

// The entropy, in bits, of a distribution of weights, times their sum S: S log2 S less the sum of all w log2 w, where
// the term of what is not positive is 0 (Shannon 1948). Both running sums are floats; the result is not rounded.
double weighted_entropy(const float* weights, std::size_t count);

}  // namespace arbor::impls

#endif
