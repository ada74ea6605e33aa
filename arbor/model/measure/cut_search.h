// What the two continuous measures have in common: which cuts are admissible, what a cut is worth,
// and what the search for the best one costs it. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_CUT_SEARCH_H
#define ARBOR_MODEL_MEASURE_CUT_SEARCH_H

#include <array>
#include <cstddef>
#include <limits>
#include <numeric>
#include <type_traits>

#include "arbor/model/column.h"
#include "arbor/model/measure/entropy.h"
#include "arbor/utils/work_array.h"

namespace arbor::impls {

// The minimum-branch rule: the least weight of either side of a cut. It is `min_weight` where that
// is at least a tenth of the known weight divided by the number of classes, else this tenth, but at
// most 25; a `min_weight` above 25 can thus be undercut in a heavy node.
float least_side_weight(float known_weight, unsigned int classes, float min_weight);

// The price of having chosen among several cuts, in bits per unit of weight: log2(candidates),
// spread over the total weight or, if the options say so, over the number of cases. J. R. Quinlan,
// Journal of Artificial Intelligence Research 4 (1996), 77-90.
float cut_point_penalty(unsigned int candidates, float total_weight, std::size_t case_count,
                        const options* opts);

// The cases of a node, as a continuous measure sees them.
struct node_weights {
  const float* classes;  // the weight of each class among the cases whose value is known
  unsigned int class_count;
  float unknown;
  float total;  // as the caller tells it
  float least_branch;

  float known() const { return total - unknown; }
  // Whether the known cases are heavy enough for two branches.
  bool splittable() const {
    return 2.0 * static_cast<double>(least_branch) <= static_cast<double>(known());
  }
};

// Moves a cut from the lowest code to the highest and keeps the best place.
//
// Weight and Terms as in entropy_sum. `Classes` is the number of classes where it is known to the
// compiler, else 0.
template <class Weight, class Terms, unsigned int Classes>
class cut_search {
 public:
  cut_search(const node_weights& searched, const Terms& of_weights)
      : node(searched),
        term(of_weights),
        known_weight(searched.known()),
        info(static_cast<float>(weighted_entropy<Weight>(term, node.classes, node.class_count) /
                                static_cast<double>(known_weight))),
        known_fraction(static_cast<double>(known_weight) /
                       (static_cast<double>(node.unknown) + static_cast<double>(known_weight))),
        least_left(least_side_weight(known_weight, node.class_count, node.least_branch)),
        most_left(known_weight - least_left),
        left(node.class_count + 1ULL),
        right(node.class_count + 1ULL) {
    for (unsigned int c = 1; c <= classes(); ++c) {
      right[c] = static_cast<Weight>(node.classes[c - 1]);
      known_sum += right[c];
    }
  }

  // Moves to the left of the cut what lies next to it.
  void move(unsigned int class_code, Weight weight) {
    left[class_code] += weight;
    right[class_code] -= weight;
    left_sum += weight;
  }
  // The same for each class, from the weight of the first one on.
  template <class Stored>
  void move_all(const Stored* weights) {
    const unsigned int count = classes();
    Weight* const on_left = left.data() + 1;
    Weight* const on_right = right.data() + 1;
    for (unsigned int c = 0; c < count; ++c) left_sum += as_weight(weights[c]);
    for (unsigned int c = 0; c < count; ++c) on_left[c] += as_weight(weights[c]);
    for (unsigned int c = 0; c < count; ++c) on_right[c] -= as_weight(weights[c]);
  }
  // Puts the cut where the two classes weigh this on its left.
  void put(Weight first_class, Weight second_class) {
    static_assert(Classes == 2, "the weights of all classes are needed");
    right[1] += left[1] - first_class;
    right[2] += left[2] - second_class;
    left[1] = first_class;
    left[2] = second_class;
    left_sum = first_class + second_class;
  }
  unsigned int classes() const { return Classes != 0 ? Classes : node.class_count; }
  Weight left_weight() const { return left_sum; }
  template <class Stored>
  static Weight as_weight(Stored weight) {
    return static_cast<Weight>(weight);
  }

  // Where the cut is, as far as both sides have their least weight.
  bool too_low() const { return static_cast<float>(left_sum) < least_left; }
  bool too_high() const { return too_high(left_sum); }
  bool too_high(Weight left_of_cut) const { return static_cast<float>(left_of_cut) > most_left; }

  // Counts an admissible cut, whether it is then evaluated or not.
  void count_candidate() { ++candidates; }

  // Rates the cut, which the caller knows as `place`. Of equal gains, as they round to float, the
  // one evaluated earlier stays the best. A cut that is not `eligible` cannot be the best.
  void evaluate(std::size_t place, bool eligible = true) {
    const unsigned int count = classes();
    const Weight* const on_left = left.data() + 1;
    const Weight* const on_right = right.data() + 1;
    // Two entropy sums side by side: each addition waits for the one before, but not for the other
    // side's.
    float left_terms = 0;
    float right_terms = 0;
    for (unsigned int c = 0; c < count; ++c) {
      left_terms = with_term(left_terms, term(on_left[c]));
      right_terms = with_term(right_terms, term(on_right[c]));
    }
    const double left_entropy = term(sum_of(on_left, left_sum)) - static_cast<double>(left_terms);
    const double right_entropy =
        term(sum_of(on_right, known_sum - left_sum)) - static_cast<double>(right_terms);
    const auto value_entropy = static_cast<float>(left_entropy + right_entropy);
    // The gain never grows with the entropy within the sides, however it is rounded, since neither
    // the known weight nor its share is negative. So most cuts need no division.
    if (!(value_entropy < best_entropy) || !eligible) return;
    const auto gain =
        static_cast<float>((static_cast<double>(info) - static_cast<double>(value_entropy) /
                                                            static_cast<double>(known_weight)) *
                           known_fraction);
    if (!(gain > best_gain)) return;
    best_gain = gain;
    best_entropy = value_entropy;
    best_left = left_sum;
    best = place;
  }

  // Sets gain and split information of `result` to those of the best cut, `best_place`, and returns
  // true; or returns false when there is none or its gain does not exceed the cut-point penalty.
  // `case_count` includes unknown values.
  bool conclude(std::size_t case_count, const options* opts, column::splitting_desc& result) const {
    const float penalty = cut_point_penalty(candidates, node.total, case_count, opts);
    if (!(penalty < best_gain)) return false;
    const auto left_branch = static_cast<float>(best_left);
    const std::array<float, 3> branches{node.unknown, left_branch, known_weight - left_branch};
    const auto split_entropy =
        static_cast<float>(weighted_entropy<float>(real_terms(), branches.data(), 3));
    result.gain = best_gain - penalty;
    result.split_info = split_entropy / node.total;
    return true;
  }
  std::size_t best_place() const { return best; }

 private:
  // The sum of a side's weights. Whole numbers need not be added up anew.
  Weight sum_of(const Weight* side, Weight whole_sum) const {
    if constexpr (std::is_integral_v<Weight>) return whole_sum;
    return std::accumulate(side, side + classes(), Weight());
  }

  // Two numbers can live in registers.
  struct few : std::array<Weight, Classes + 1> {
    explicit few(unsigned long long /*length*/) : std::array<Weight, Classes + 1>{} {}
  };
  using by_class = std::conditional_t<Classes != 0, few, strata::util::work_array<Weight, 16>>;

  const node_weights& node;
  const Terms& term;
  const float known_weight;
  const float info;
  const double known_fraction;
  const float least_left;
  const float most_left;
  by_class left;  // by class code the weight on this side; entry 0 is unused
  by_class right;
  Weight known_sum = 0;
  Weight left_sum = 0;
  unsigned int candidates = 0;
  float best_gain = column::splitting_desc::no_split;
  float best_entropy = std::numeric_limits<float>::infinity();
  Weight best_left = 0;
  std::size_t best = 0;
};

// Calls `use` with a cut_search of so many classes, 0 for any number, for at most `cuts` cuts.
// Weight is unsigned int for weights that count in whole numbers, else float.
template <unsigned int Classes, class Weight, class Use>
void with_cut_search(const node_weights& node, std::size_t cuts, Use&& use) {
  if constexpr (std::is_integral_v<Weight>) {
    const float sum = std::accumulate(node.classes, node.classes + node.class_count, 0.0F);
    const unsigned long long term_count = 2 * (node.class_count + 1ULL) * cuts;
    if (const double* table = whole_number_terms(static_cast<unsigned int>(sum), term_count)) {
      const whole_terms terms{table};
      cut_search<Weight, whole_terms, Classes> search(node, terms);
      use(search);
      return;
    }
  }
  const real_terms terms;
  cut_search<float, real_terms, Classes> search(node, terms);
  use(search);
}

}  // namespace arbor::impls

#endif
