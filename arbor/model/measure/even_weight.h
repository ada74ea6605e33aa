// Whether all cases weigh the same whole number and their sum is at most 2^24. Float adds up such
// weights without rounding, in any order, so the cases may be counted. Internal to the model.
//
//   const even_weight weight(cases);
//   if (weight.likely() && weight.is_of_all(cases.data(), cases.size())) count_them(weight.value());
#ifndef ARBOR_MODEL_MEASURE_EVEN_WEIGHT_H
#define ARBOR_MODEL_MEASURE_EVEN_WEIGHT_H

#include <cstring>

#include "arbor/model/w_sequence.h"

namespace arbor::impls {

class even_weight {
 public:
  // Samples 16 cases, the first and the last among them: uneven weights usually show there. Unknown
  // cases, whose weight is a share, come last in the branch of a discrete split.
  explicit even_weight(const w_sequence& cases) {
    constexpr std::size_t sample = 16;
    constexpr unsigned int most = 1U << 24U;  // float holds all whole numbers up to here
    if (cases.empty()) return;
    const float weight = cases.front().second;
    bits = bits_of_weight(weight);
    if (!(weight >= 1 && weight <= static_cast<float>(most))) return;
    number = static_cast<unsigned int>(weight);
    if (static_cast<float>(number) != weight || number > most / cases.size()) return;
    is_likely = true;
    for (std::size_t i = 1; i < sample; ++i) {
      is_likely = is_likely && cases[(cases.size() - 1) * i / (sample - 1)].second == weight;
    }
  }

  // Whether the sum is small enough and the sample even.
  bool likely() const { return is_likely; }
  // What each of the cases weighs then, at least 1.
  unsigned int value() const { return number; }
  // Whether each of these cases weighs that.
  bool is_of_all(const w_sequence::value_type* cases, std::size_t count) const {
    unsigned int difference = 0;  // no branch on a case
    for (std::size_t i = 0; i < count; ++i) difference |= bits ^ bits_of_weight(cases[i].second);
    return difference == 0;
  }

 private:
  static unsigned int bits_of_weight(float weight) {
    unsigned int result = 0;
    std::memcpy(&result, &weight, sizeof result);
    return result;
  }

  unsigned int bits = 0;
  unsigned int number = 0;
  bool is_likely = false;
};

}  // namespace arbor::impls

#endif
