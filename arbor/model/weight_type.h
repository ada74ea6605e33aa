// The constant by which natural logarithms become binary ones.
#ifndef ARBOR_MODEL_WEIGHT_TYPE_H
#define ARBOR_MODEL_WEIGHT_TYPE_H

namespace arbor::impls {

struct weight_type {
  static constexpr float Log2 = 0.693147182464599609375F;  // ln 2 as a float, bits 0x3F317218
};

}  // namespace arbor::impls

#endif
