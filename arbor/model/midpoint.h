// The middle between two values lo <= hi of a numeric domain. Internal to the model.
#ifndef ARBOR_MODEL_MIDPOINT_H
#define ARBOR_MODEL_MIDPOINT_H

namespace arbor::impls {

// Rounded down. Neither this function nor the next one overflows.
inline int midpoint(int lo, int hi) {
  if (lo >= 0 || hi < 0) return (hi - lo) / 2 + lo;
  const int sum = lo + hi;
  return sum >= 0 ? sum / 2 : sum - sum / 2;
}

inline unsigned int midpoint(unsigned int lo, unsigned int hi) {
  return ((hi - lo) >> 1U) + lo;
}

// Infinite if the difference is too large for a double; a NaN if either value is one, if `lo` is
// -infinity, or if both are the same infinity.
inline double midpoint(double lo, double hi) {
  return (hi - lo) * 0.5 + lo;
}

inline float midpoint(float lo, float hi) {
  return static_cast<float>(midpoint(static_cast<double>(lo), static_cast<double>(hi)));
}

}  // namespace arbor::impls

#endif
