// Whether weights are whole numbers with a small sum. Then float adds them up without rounding, in any order, and they
// may be counted. Internal to the model.
#ifndef ARBOR_MODEL_WHOLE_WEIGHTS_H
#define ARBOR_MODEL_WHOLE_WEIGHTS_H

#include "arbor/model/w_sequence.h"

namespace arbor::impls {

class whole_weights {
 public:
  // Up to 2^24 all whole numbers are exact as float; `case_count` weights of at most `heaviest` cannot exceed it.
  explicit whole_weights(std::size_t case_count)
      : heaviest(case_count == 0 ? 0.0F : static_cast<float>((1U << 24U) / case_count)) {}

  // Whether the weights of [begin, end), some of the cases, are such.
  bool hold(const w_sequence::value_type* begin, const w_sequence::value_type* end) const {
    constexpr float one_is_last_digit = 1U << 23U;  // of the numbers from here to 2^24
    bool all = true;
    for (const auto* c = begin; c != end; ++c) {
      const float rounded = (c->second + one_is_last_digit) - one_is_last_digit;
      all = all & (rounded == c->second) & (c->second >= 0) & (c->second <= heaviest);
    }
    return all;
  }

 private:
  float heaviest;
};

}  // namespace arbor::impls

#endif
