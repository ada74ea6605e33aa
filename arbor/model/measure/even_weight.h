// Whether all cases weigh the same whole number and their sum is at most 2^24. Float adds up such
// weights without rounding, in any order, so the cases may be counted. Internal to the model.
//
//   const even_weight weight(cases);
//   if (weight.likely() && weight.is_of_all(cases)) count_them(weight.value());
#ifndef ARBOR_MODEL_MEASURE_EVEN_WEIGHT_H
#define ARBOR_MODEL_MEASURE_EVEN_WEIGHT_H

#include <cstring>

#include "arbor/model/w_sequence.h"

namespace arbor::impls {

class even_weight {
 public:
  // Samples up to 17 cases, the first and the last among them: uneven weights usually show there.
  // Unknown cases, whose weight is a share, come last in the branch of a discrete split.
  explicit even_weight(const w_sequence& cases) {
    constexpr std::size_t sample = 16;
    constexpr unsigned int most = 1U << 24U;  // float holds all whole numbers up to here
    if (cases.empty()) return;
    const float weight = cases.front().second;
    bits = bits_of_weight(weight);
    if (!(weight >= 1 && weight <= static_cast<float>(most))) return;
    number = static_cast<unsigned int>(weight);
    if (static_cast<float>(number) != weight || number > most / cases.size()) return;
    const std::size_t step = 1 + (cases.size() - 1) / sample;
    bool same = cases.back().second == weight;
    for (std::size_t i = step; i < cases.size(); i += step) {
      same = same && cases[i].second == weight;
    }
    is_likely = same;
  }

  // Whether the sum is small enough and the sample even.
  bool likely() const { return is_likely; }
  // What each case weighs then, at least 1.
  unsigned int value() const { return number; }
  // 0 if a case has exactly this weight. The differences of many cases can be combined by "or".
  unsigned int difference(float weight) const { return bits ^ bits_of_weight(weight); }
  // Whether all cases have this weight.
  bool is_of_all(const w_sequence& cases) const {
    unsigned int differences = 0;
    for (const auto& c : cases) differences |= difference(c.second);
    return differences == 0;
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
