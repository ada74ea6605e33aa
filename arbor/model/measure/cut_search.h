// The search for the best threshold of a continuous column, which both continuous measures share:
// which cuts are admissible, what a cut is worth, and what searching for it costs. Internal to the
// model.
#ifndef ARBOR_MODEL_MEASURE_CUT_SEARCH_H
#define ARBOR_MODEL_MEASURE_CUT_SEARCH_H

#include <algorithm>
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

// The class weights on both sides of a cut that moves from the lowest code to the highest.
//
// Weight is unsigned int if all weights are the same whole number, else float. `Classes` is the
// number of classes if the compiler knows it, else 0; the weights of two can stay in registers.
template <class Weight, unsigned int Classes>
class cut_sides {
 public:
  // All cases are on the right side.
  explicit cut_sides(const cut_problem& node)
      : class_count(node.class_count), left(class_count + 1ULL), right(class_count + 1ULL) {
    for (unsigned int c = 1; c <= classes(); ++c)
      right[c] = static_cast<Weight>(node.class_weights[c - 1]);
  }

  // Moves weight of a class from the right side to the left.
  void move(unsigned int class_code, Weight moved) {
    left[class_code] += moved;
    right[class_code] -= moved;
    left_sum += moved;
  }
  // Moves weights of all classes, from that of class 1 on.
  template <class Stored>
  void move_all(const Stored* weights) {
    const unsigned int count = classes();
    const Stored* __restrict const moved = weights;
    Weight* __restrict const to = left.data() + 1;
    Weight* __restrict const from = right.data() + 1;
    Weight sum = left_sum;
    for (unsigned int c = 0; c < count; ++c) {
      to[c] += as_weight(moved[c]);
      from[c] -= as_weight(moved[c]);
    }
    for (unsigned int c = 0; c < count; ++c) sum += as_weight(moved[c]);
    left_sum = sum;
  }
  // Sets the weights of the two classes on both sides, and that of the left side.
  template <class Stored>
  void set(const std::array<Stored, 2>& on_left, const std::array<Stored, 2>& on_right,
           Stored on_left_side) {
    static_assert(Classes == 2, "the weights of all classes are needed");
    for (std::size_t c = 0; c < 2; ++c) {
      left[c + 1] = as_weight(on_left[c]);
      right[c + 1] = as_weight(on_right[c]);
    }
    left_sum = as_weight(on_left_side);
  }
  template <class Stored>
  static Weight as_weight(Stored stored) {
    return static_cast<Weight>(stored);
  }

  Weight left_weight() const { return left_sum; }
  // The weights of the classes from code 1 on, on both sides.
  const Weight* on_left() const { return left.data() + 1; }
  const Weight* on_right() const { return right.data() + 1; }

 private:
  unsigned int classes() const { return Classes != 0 ? Classes : class_count; }

  struct few : std::array<Weight, Classes + 1> {
    explicit few(unsigned long long /*length*/) : std::array<Weight, Classes + 1>{} {}
  };
  using by_class = std::conditional_t<Classes != 0, few, strata::util::work_array<Weight, 16>>;

  unsigned int class_count;
  by_class left;  // by class code the weight on this side; entry 0 is of no class
  by_class right;
  Weight left_sum = 0;
};

// Rates the cuts of a node, and keeps the best one. Many are rated at a time: what a cut is worth
// takes a long chain of roundings, and the chains of several cuts can run side by side.
//
// Entropies is whole_entropies or real_entropies, `Classes` as in cut_sides.
template <class Entropies, unsigned int Classes>
class cut_search {
 public:
  using weight = typename Entropies::weight;
  static constexpr bool at_sight = Classes == 2 && std::is_integral_v<weight>;

  // The node has at most `cuts` cuts.
  cut_search(const cut_problem& searched, std::size_t cuts, Entropies& of_sides)
      : node(searched),
        entropies(of_sides),
        room(at_sight ? 1 : distributions_at_once(node.class_count, cuts)),
        left(room * node.class_count, strata::util::first_values::any),
        right(room * node.class_count, strata::util::first_values::any),
        known_weight(searched.known_weight()),
        known_fraction(
            static_cast<double>(known_weight) /
            (static_cast<double>(node.unknown_weight) + static_cast<double>(known_weight))),
        least_left(least_side_weight(known_weight, node.class_count, node.min_weight)),
        most_left(known_weight - least_left) {
    const distribution_sums<weight> all = add_up_one(entropies, node.class_weights, classes());
    info = static_cast<float>(all.entropy() / static_cast<double>(known_weight));
  }

  // Whether a side is too light, by the weight of the left one.
  bool left_too_light(weight left_side) const { return static_cast<float>(left_side) < least_left; }
  bool right_too_light(weight left_side) const { return static_cast<float>(left_side) > most_left; }

  // Rates a cut, now or later, if it is `eligible`; the caller identifies it by `place`. If gains
  // are equal when rounded to float, the earlier cut stays the best.
  void rate(const cut_sides<weight, Classes>& sides, std::size_t place, bool eligible) {
    if constexpr (at_sight) {
      // Two weights have no chain to speak of. To rate a cut that is not eligible costs less than a
      // branch that is hard to predict.
      const auto entropy = static_cast<float>(entropies.of_two(sides.on_left()) +
                                              entropies.of_two(sides.on_right()));
      if (entropy < best_entropy && eligible) compare(entropy, sides.left_weight(), place);
      return;
    }
    // Of two classes the weights are copied in any case, for the same reason.
    if (Classes != 2 && !eligible) return;
    copy(sides);
    left_weights[waiting] = sides.left_weight();
    places[waiting] = place;
    waiting += eligible ? 1 : 0;
    if (waiting == room) rate_waiting();
  }

  // Sets gain and split information of `result` to those of the best of so many candidates, that at
  // `best_place`, and returns true; or returns false when there is none or its gain does not exceed
  // the penalty.
  bool conclude(unsigned int candidates, column::splitting_desc& result) {
    if (waiting > 0) rate_waiting();
    const float penalty =
        cut_point_penalty(candidates, node.total_weight, node.case_count, node.opts);
    if (!(penalty < best_gain)) return false;
    const auto left_branch = static_cast<float>(best_left);
    const std::array<float, 3> branches{node.unknown_weight, left_branch,
                                        known_weight - left_branch};
    const auto split_entropy =
        static_cast<float>(add_up_one(real_entropies(), branches.data(), 3).entropy());
    result.gain = best_gain - penalty;
    result.split_info = split_entropy / node.total_weight;
    return true;
  }
  std::size_t best_place() const { return best; }

 private:
  std::size_t classes() const { return Classes != 0 ? Classes : node.class_count; }

  // Copies the weights of a cut behind those that wait.
  void copy(const cut_sides<weight, Classes>& sides) {
    const std::size_t count = classes();
    const std::size_t step = room;
    weight* __restrict to_left = left.data() + waiting;
    weight* __restrict to_right = right.data() + waiting;
    const weight* __restrict const on_left = sides.on_left();
    const weight* __restrict const on_right = sides.on_right();
    for (std::size_t c = 0; c < count; ++c, to_left += step, to_right += step) {
      *to_left = on_left[c];
      *to_right = on_right[c];
    }
  }

  void rate_waiting() {
    std::array<distribution_sums<weight>, most_together> left_sums;
    std::array<distribution_sums<weight>, most_together> right_sums;
    const distributions shape{classes(), room, waiting};
    entropies.add_up(left.data(), shape, left_sums.data());
    entropies.add_up(right.data(), shape, right_sums.data());
    for (std::size_t i = 0; i < waiting; ++i) {
      const auto entropy = static_cast<float>(left_sums[i].entropy() + right_sums[i].entropy());
      compare(entropy, left_weights[i], places[i]);
    }
    waiting = 0;
  }

  void compare(float value_entropy, weight left_weight, std::size_t place) {
    // However it is rounded, the gain never grows with the entropy within the sides, since neither
    // the known weight nor its share is negative. So most cuts need no division.
    if (!(value_entropy < best_entropy)) return;
    const auto gain =
        static_cast<float>((static_cast<double>(info) - static_cast<double>(value_entropy) /
                                                            static_cast<double>(known_weight)) *
                           known_fraction);
    if (!(gain > best_gain)) return;
    best_gain = gain;
    best_entropy = value_entropy;
    best_left = left_weight;
    best = place;
  }

  const cut_problem& node;
  Entropies& entropies;
  const std::size_t room;  // for cuts that wait to be rated
  // Their weights by class on both sides, see distributions, and what is known of each cut.
  strata::util::work_array<weight, 2 * most_together> left;
  strata::util::work_array<weight, 2 * most_together> right;
  std::array<weight, most_together> left_weights;
  std::array<std::size_t, most_together> places;
  std::size_t waiting = 0;
  const float known_weight;
  const double known_fraction;
  const float least_left;
  const float most_left;
  float info = 0;  // class entropy of the known cases, in bits
  float best_gain = column::splitting_desc::no_split;
  float best_entropy = std::numeric_limits<float>::infinity();
  weight best_left = 0;
  std::size_t best = 0;
};

// Moves a cut over the codes, rates every candidate, and returns how many there are. `codes` moves
// it:
//
//   move_next(sides)        moves the cases of the next code to the left side; returns false if no
//                           other code would be left on the right side, and may have moved them or
//                           not then
//   place()                 the number by which the search and `codes` know the cut
//   inside_run(search, sides)
//                           whether the cases around the cut are all of one class, so that the cut
//                           cannot be the best; called once for each candidate
template <class Codes, class Sides, class Search>
unsigned int sweep(Codes& codes, Sides& sides, Search& search) {
  unsigned int candidates = 0;
  while (codes.move_next(sides)) {
    if (search.left_too_light(sides.left_weight())) continue;
    if (search.right_too_light(sides.left_weight())) break;
    ++candidates;
    search.rate(sides, codes.place(), !codes.inside_run(search, sides));
  }
  return candidates;
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
      whole_entropies entropies(table);
      cut_search<whole_entropies, Classes> search(node, cuts, entropies);
      use(search);
      return;
    }
  }
  real_entropies entropies;
  cut_search<real_entropies, Classes> search(node, cuts, entropies);
  use(search);
}

// Finds the best cut of a node with at most `cuts` cuts. `result` must hold the no-split mark; its
// gain, split information and codes are set if there is such a cut.
//
// `codes` as in `sweep`, with low_code(place) and high_code(place). It is copied, so that its state
// and the sides can stay in registers.
template <unsigned int Classes, class Weight, class Codes>
void find_best_cut(const cut_problem& node, std::size_t cuts, const Codes& codes,
                   column::splitting_desc& result) {
  if (!node.splittable()) return;
  with_cut_search<Classes, Weight>(node, cuts, [&](auto& search) {
    using sides = cut_sides<typename std::decay_t<decltype(search)>::weight, Classes>;
    Codes cut = codes;
    sides around_cut(node);
    if (!search.conclude(sweep(cut, around_cut, search), result)) return;
    result.low_code = cut.low_code(search.best_place());
    result.high_code = cut.high_code(search.best_place());
  });
}

}  // namespace arbor::impls

#endif
