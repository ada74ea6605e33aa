// x log2 x, of which every entropy is a sum. Internal to the model.
//
//   real_terms::of(2.5F);             // 3.30...
//   const whole_terms terms(1000000);  // of the whole numbers; up to a million they come from a table
//   terms(8);                         // 24
#ifndef ARBOR_MODEL_LOG_TERMS_H
#define ARBOR_MODEL_LOG_TERMS_H

namespace arbor::impls {

// The binary logarithm, rounded to float. The rounding hides that the C library's logarithm may differ in its last bit
// from one processor and build to the next (glibc 2.36: checked for the positive floats). Another library's may not be
// hidden.
float binary_log(double x);

// x times its binary logarithm, not rounded; 0 for what is not positive.
double log_term(float x);

// The terms of weights that are any number.
class real_terms {
 public:
  double operator()(float weight) const { return log_term(weight); }
};

// The terms of weights that are whole numbers up to 2^24, which are exact as float: a table holds the values of
// log_term, so that they have its bits. Tables are made when first asked for and then stay unchanged until the process
// ends; several threads may ask at once. What no table holds, for lack of memory say, is computed.
class whole_terms {
 public:
  // For numbers up to `greatest`.
  explicit whole_terms(unsigned int greatest);

  double operator()(unsigned int weight) const {
    return weight < end ? table[weight] : log_term(static_cast<float>(weight));
  }

 private:
  const double* table = nullptr;
  unsigned int end = 0;
};

}  // namespace arbor::impls

#endif
