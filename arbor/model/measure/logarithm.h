// The binary logarithm as the measures use it, and the terms x log2 x of many weights at once.
// Internal to the library.
//
//   std::array<double, 3> terms;
//   log_terms(weights.data(), 3, terms.data());
#ifndef ARBOR_MODEL_MEASURE_LOGARITHM_H
#define ARBOR_MODEL_MEASURE_LOGARITHM_H

#include <cstddef>

namespace arbor::impls {

// The natural logarithm of a number, normal and above 0, divided by Log2 and rounded to float. For
// every float above 0 these are the bits that the C library gives when its logarithm is right to
// the last bit but one (glibc 2.36: all of them are compared by script/check-logarithm), but they
// are the same on every processor and with every C library. Of other numbers one in millions may
// differ from that library's by a step of float.
float binary_log(double x);

// x times its binary logarithm, not rounded; 0 unless x is positive.
double log_term(float x);

// Sets entry i of `terms` to log_term(weights[i]), for each of `count` weights.
void log_terms(const float* weights, std::size_t count, double* terms);

}  // namespace arbor::impls

#endif
