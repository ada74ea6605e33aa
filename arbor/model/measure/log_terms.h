// x log2 x, of which every entropy is a sum. Internal to the model.
//
//   real_terms()(2.5F);                                         // 3.30...
//   const double* table = whole_number_terms(1000000, 300000);  // may be null
//   whole_terms{table}(8);                                      // 24
#ifndef ARBOR_MODEL_MEASURE_LOG_TERMS_H
#define ARBOR_MODEL_MEASURE_LOG_TERMS_H

namespace arbor::impls {

// The binary logarithm, rounded to float. The rounding hides that the C library's logarithm may
// differ in its last bit from one processor and build to the next (glibc 2.36: checked for the
// positive floats). Another library's may not be hidden.
float binary_log(double x);

// x times its binary logarithm, not rounded; 0 for what is not positive.
double log_term(float x);

// The values of log_term for the whole numbers from 0 to at least `greatest`, or null. Tables are
// made when first asked for, if about `terms` terms are enough to be worth it and there is memory,
// and then stay unchanged until the process ends; several threads may ask at once.
const double* whole_number_terms(unsigned int greatest, unsigned long long terms);

// The terms of weights that are any number, and of those that are whole and not beyond the end of a
// table.
struct real_terms {
  double operator()(float weight) const { return log_term(weight); }
};
struct whole_terms {
  const double* table;
  double operator()(unsigned int weight) const { return table[weight]; }
};

}  // namespace arbor::impls

#endif
