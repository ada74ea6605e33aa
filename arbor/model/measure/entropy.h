// The weighted entropy sum, from which every measure of a split is made: of one distribution of
// weights, or of many at once. Internal to the model.
//
//   real_entropies::add_up(weights.data(), {classes, count, count}, sums.data());
//   sums[0].entropy();
//
// The entropy of a distribution of weights w in bits, times their sum S, is S log2 S minus the sum
// of all w log2 w (C. E. Shannon, Bell System Technical Journal 27 (1948), 379-423). Both running
// sums are floats, rounded at each addition.
#ifndef ARBOR_MODEL_MEASURE_ENTROPY_H
#define ARBOR_MODEL_MEASURE_ENTROPY_H

#include <algorithm>
#include <cstddef>

#include "arbor/model/measure/logarithm.h"

namespace arbor::impls {

// Weight is float, or unsigned int if all weights are whole numbers and float holds their sum
// exactly: sums of up to 2^24 are the same in either.
template <class Weight>
struct distribution_sums {
  Weight weight;       // S
  double weight_term;  // S log2 S
  float terms;         // the sum of all w log2 w

  double entropy() const { return weight_term - static_cast<double>(terms); }
};

// A float sum of terms, after one more.
inline float with_term(float sum, double term) {
  return static_cast<float>(static_cast<double>(sum) + term);
}

// A table of log_term for the whole numbers from 0 to at least `greatest`, or null: a table is made
// on first use, if `terms` look-ups or so make it worth its cost and there is memory for it. It
// then stays unchanged until the process ends. Several threads may ask at once.
const double* whole_number_terms(unsigned int greatest, unsigned long long terms);

// The weights of several distributions, class by class: those of class c, from 0 on, are entries
// c * room to c * room + count - 1.
struct distributions {
  std::size_t classes;
  std::size_t room;   // for distributions, see distributions_at_once
  std::size_t count;  // of distributions, from 1 to room
};
constexpr std::size_t most_together = 64;

// How many of `count` distributions of these classes are best added up in a call: so many that
// their weights stay in the core's own cache.
inline std::size_t distributions_at_once(std::size_t classes, std::size_t count) {
  constexpr std::size_t most_weights = 1U << 10U;
  constexpr std::size_t fewest = 4;
  const std::size_t most = std::clamp<std::size_t>(count, 1, most_together);
  const std::size_t fitting = most_weights / std::max<std::size_t>(classes, 1);
  return std::min(std::max(fitting, fewest), most);
}

// The sums of several distributions of whole numbers, whose terms are looked up.
class whole_entropies {
 public:
  using weight = unsigned int;

  // `of_numbers` has the terms of all numbers up to the greatest sum.
  explicit whole_entropies(const double* of_numbers) : term(of_numbers) {}

  double term_of(unsigned int number) const { return term[number]; }
  // The entropy of two weights, times their sum.
  double of_two(const unsigned int* weights) const {
    const float terms = with_term(static_cast<float>(term[weights[0]]), term[weights[1]]);
    return term[weights[0] + weights[1]] - static_cast<double>(terms);
  }
  // Sets an entry of `sums` for each distribution.
  void add_up(const unsigned int* weights, const distributions& shape,
              distribution_sums<unsigned int>* sums) const;

 private:
  const double* term;
};

// The sums of several distributions of any weights.
struct real_entropies {
  using weight = float;

  static double term_of(float number) { return log_term(number); }
  // Sets an entry of `sums` for each distribution. It is fast if most weights are those of the same
  // class in the distribution before.
  static void add_up(const float* weights, const distributions& shape,
                     distribution_sums<float>* sums);
};

// The sums of one distribution of `count` weights, each `step` entries after the one before.
template <class Entropies, class Stored>
distribution_sums<typename Entropies::weight> add_up_one(const Entropies& entropies,
                                                         const Stored* weights, std::size_t count,
                                                         std::size_t step = 1) {
  using weight = typename Entropies::weight;
  distribution_sums<weight> result{};
  for (std::size_t c = 0; c < count; ++c) {
    const auto next = static_cast<weight>(weights[c * step]);
    result.weight += next;
    result.terms = with_term(result.terms, entropies.term_of(next));
  }
  result.weight_term = entropies.term_of(result.weight);
  return result;
}

}  // namespace arbor::impls

#endif
