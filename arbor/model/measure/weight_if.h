// A weight that counts or does not, without a branch. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_WEIGHT_IF_H
#define ARBOR_MODEL_MEASURE_WEIGHT_IF_H

#include <cstring>

namespace arbor::impls {

// `weight` times `one_or_zero`, by masking its bits; compilers make no branch of that.
inline float weight_if(unsigned int one_or_zero, float weight) {
  unsigned int bits = 0;
  std::memcpy(&bits, &weight, sizeof bits);
  bits &= 0U - one_or_zero;
  std::memcpy(&weight, &bits, sizeof bits);
  return weight;
}

inline unsigned int weight_if(unsigned int one_or_zero, unsigned int weight) {
  return one_or_zero * weight;
}

}  // namespace arbor::impls

#endif
