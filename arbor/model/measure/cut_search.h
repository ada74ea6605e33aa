// The search for the best threshold of a continuous column, which both continuous measures share:
// which cuts are admissible, what a cut is worth, and what searching for it costs. Internal to the
// model.
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
// most 25; so a `min_weight` above 25 does not hold in a heavy node.
float least_side_weight(float known_weight, unsigned int classes, float min_weight);

// The price of having chosen among several cuts, in bits per unit of weight: log2(candidates),
// divided by the total weight or, if the options say so, by the number of cases. J. R. Quinlan,
// Journal of Artificial Intelligence Research 4 (1996), 77-90.
float cut_point_penalty(unsigned int candidates, float total_weight, std::size_t case_count,
                        const options* opts);

// A node, as a continuous measure sees it.
struct cut_problem {
  const float* class_weights;  // of the cases whose value is known, by class code less 1
  unsigned int class_count;
  float unknown_weight;
  float total_weight;      // of all cases, as the caller gives it
  std::size_t case_count;  // of all cases
  float min_weight;        // see column::quality_measure
  const options* opts;     // may be null

  float known_weight() const { return total_weight - unknown_weight; }
  // Whether the known cases may be heavy enough for two branches; always, if the least weight is
  // not a number.
  bool splittable() const {
    return !(2.0 * static_cast<double>(min_weight) > static_cast<double>(known_weight()));
  }
};

// Keeps the class weights on both sides of a cut that moves from the lowest code to the highest,
// and the best place for it.
//
// Weight and Terms as in entropy_sum. `Classes` is the number of classes if the compiler knows it,
// else 0.
template <class Weight, class Terms, unsigned int Classes>
class cut_search {
 public:
  cut_search(const cut_problem& searched, const Terms& of_weights)
      : node(searched),
        term(of_weights),
        known_weight(searched.known_weight()),
        info(static_cast<float>(
            weighted_entropy<Weight>(term, node.class_weights, node.class_count) /
            static_cast<double>(known_weight))),
        known_fraction(
            static_cast<double>(known_weight) /
            (static_cast<double>(node.unknown_weight) + static_cast<double>(known_weight))),
        least_left(least_side_weight(known_weight, node.class_count, node.min_weight)),
        most_left(known_weight - least_left),
        left(node.class_count + 1ULL),
        right(node.class_count + 1ULL) {
    for (unsigned int c = 1; c <= classes(); ++c) {
      right[c] = static_cast<Weight>(node.class_weights[c - 1]);
      known_sum += right[c];
    }
  }

  // Moves weight of a class from the right side to the left.
  void move(unsigned int class_code, Weight weight) {
    left[class_code] += weight;
    right[class_code] -= weight;
    left_sum += weight;
  }
  // Moves weights of all classes, from that of class 1 on.
  template <class Stored>
  void move_all(const Stored* weights) {
    const unsigned int count = classes();
    Weight* const on_left = left.data() + 1;
    Weight* const on_right = right.data() + 1;
    for (unsigned int c = 0; c < count; ++c) left_sum += as_weight(weights[c]);
    for (unsigned int c = 0; c < count; ++c) on_left[c] += as_weight(weights[c]);
    for (unsigned int c = 0; c < count; ++c) on_right[c] -= as_weight(weights[c]);
  }
  // Sets the weights of the two classes on the left side.
  void set_left(Weight first_class, Weight second_class) {
    static_assert(Classes == 2, "the weights of all classes are needed");
    right[1] += left[1] - first_class;
    right[2] += left[2] - second_class;
    left[1] = first_class;
    left[2] = second_class;
    left_sum = first_class + second_class;
  }
  Weight left_weight() const { return left_sum; }
  template <class Stored>
  static Weight as_weight(Stored weight) {
    return static_cast<Weight>(weight);
  }

  // Whether the left (right) side is still (already) too light.
  bool left_too_light() const { return static_cast<float>(left_sum) < least_left; }
  bool right_too_light() const { return right_too_light(left_sum); }
  // The same for another weight of the left side.
  bool right_too_light(Weight left_of_cut) const {
    return static_cast<float>(left_of_cut) > most_left;
  }

  // Counts a candidate.
  void count_candidate() { ++candidates; }

  // Rates the cut; the caller identifies it by `place`. If gains are equal when rounded to float,
  // the earlier cut stays the best. A cut that is not `eligible` cannot become the best; with two
  // classes it is rated all the same, which costs less than a branch that is hard to predict.
  void evaluate(std::size_t place, bool eligible) {
    if (Classes != 2 && !eligible) return;
    const unsigned int count = classes();
    const Weight* const on_left = left.data() + 1;
    const Weight* const on_right = right.data() + 1;
    // Two sums at once: each addition waits for the one before it, but not for the other side's.
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
    // However it is rounded, the gain never grows with the entropy within the sides, since neither
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
  // true; or returns false when there is none or its gain does not exceed the penalty.
  bool conclude(column::splitting_desc& result) const {
    const float penalty =
        cut_point_penalty(candidates, node.total_weight, node.case_count, node.opts);
    if (!(penalty < best_gain)) return false;
    const auto left_branch = static_cast<float>(best_left);
    const std::array<float, 3> branches{node.unknown_weight, left_branch,
                                        known_weight - left_branch};
    const auto split_entropy =
        static_cast<float>(weighted_entropy<float>(real_terms(), branches.data(), 3));
    result.gain = best_gain - penalty;
    result.split_info = split_entropy / node.total_weight;
    return true;
  }
  std::size_t best_place() const { return best; }

 private:
  unsigned int classes() const { return Classes != 0 ? Classes : node.class_count; }

  // The sum of a side's weights. Whole numbers need not be added up again.
  Weight sum_of(const Weight* side, Weight whole_sum) const {
    if constexpr (std::is_integral_v<Weight>) return whole_sum;
    return std::accumulate(side, side + classes(), Weight());
  }

  // Two numbers can stay in registers.
  struct few : std::array<Weight, Classes + 1> {
    explicit few(unsigned long long /*length*/) : std::array<Weight, Classes + 1>{} {}
  };
  using by_class = std::conditional_t<Classes != 0, few, strata::util::work_array<Weight, 16>>;

  const cut_problem& node;
  const Terms& term;
  const float known_weight;
  const float info;  // class entropy of the known cases, in bits
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

// Moves the cut over the codes and rates every candidate. `codes` moves it:
//
//   move_next(search)       moves the cases of the next code to the left side; returns false if no
//                           other code would be left on the right side, and may have moved them or
//                           not then
//   place()                 the number by which `evaluate` and `codes` know the cut
//   inside_run(search)      whether the cases around the cut are all of one class, so that the cut
//                           cannot be the best; called once for each candidate
template <class Codes, class Search>
void sweep(Codes& codes, Search& search) {
  while (codes.move_next(search)) {
    if (search.left_too_light()) continue;
    if (search.right_too_light()) break;
    search.count_candidate();
    search.evaluate(codes.place(), !codes.inside_run(search));
  }
}

// Calls `use` with a cut_search for this number of classes (0 for any) and at most `cuts` cuts.
// Weight is unsigned int if all weights are the same whole number, else float.
template <unsigned int Classes, class Weight, class Use>
void with_cut_search(const cut_problem& node, std::size_t cuts, Use&& use) {
  if constexpr (std::is_integral_v<Weight>) {
    const float sum =
        std::accumulate(node.class_weights, node.class_weights + node.class_count, 0.0F);
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

// Finds the best cut of a node with at most `cuts` cuts. `result` must hold the no-split mark; its
// gain, split information and codes are set if there is such a cut.
//
// `codes` as in `sweep`, with low_code(place) and high_code(place). It is copied, so that its state
// can stay in registers.
template <unsigned int Classes, class Weight, class Codes>
void find_best_cut(const cut_problem& node, std::size_t cuts, const Codes& codes,
                   column::splitting_desc& result) {
  if (!node.splittable()) return;
  with_cut_search<Classes, Weight>(node, cuts, [&](auto& search) {
    Codes cut = codes;
    sweep(cut, search);
    if (!search.conclude(result)) return;
    result.low_code = cut.low_code(search.best_place());
    result.high_code = cut.high_code(search.best_place());
  });
}

}  // namespace arbor::impls

#endif
