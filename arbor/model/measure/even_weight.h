// Whether all cases weigh the same whole number, with a sum of at most 2^24. Float adds such
// weights up without rounding, in any order, so that they may be counted. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_EVEN_WEIGHT_H
#define ARBOR_MODEL_MEASURE_EVEN_WEIGHT_H

#include <algorithm>
#include <cstring>

#include "arbor/model/w_sequence.h"

namespace arbor::impls {

class even_weight {
 public:
  // Looks at the first few cases, which most often tell.
  explicit even_weight(const w_sequence& cases) {
    constexpr std::size_t sample = 16;
    constexpr unsigned int most = 1U << 24U;  // up to here all whole numbers are exact as float
    if (cases.empty()) return;
    weight = cases.front().second;
    std::memcpy(&bits, &weight, sizeof bits);
    if (!(weight >= 1 && weight <= static_cast<float>(most))) return;
    number = static_cast<unsigned int>(weight);
    const auto sample_end =
        cases.begin() + static_cast<std::ptrdiff_t>(std::min(sample, cases.size()));
    is_likely = static_cast<float>(number) == weight && number <= most / cases.size() &&
                std::all_of(cases.begin(), sample_end,
                            [this](const auto& c) { return c.second == weight; });
  }

  bool likely() const { return is_likely; }
  // What each weighs then, at least 1.
  unsigned int value() const { return number; }
  // 0 if a case weighs just that. The differences of many can be gathered by "or".
  unsigned int difference(float other) const {
    unsigned int other_bits = 0;
    std::memcpy(&other_bits, &other, sizeof other_bits);
    return bits ^ other_bits;
  }

 private:
  float weight = 0;
  unsigned int bits = 0;
  unsigned int number = 0;
  bool is_likely = false;
};

}  // namespace arbor::impls

#endif
