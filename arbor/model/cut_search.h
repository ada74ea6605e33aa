// What the two continuous measures have in common: which cuts are admissible, what a cut is worth, and what the search
// for the best one costs it. Internal to the model.
#ifndef ARBOR_MODEL_CUT_SEARCH_H
#define ARBOR_MODEL_CUT_SEARCH_H

#include <cstddef>
#include <vector>

#include "arbor/model/column.h"

namespace arbor::impls {

// The minimum-branch rule: the least weight of either side of a cut. It is `min_weight` where that is at least a tenth
// of the known weight divided by the number of classes, else this tenth, but at most 25; a `min_weight` above 25 can
// thus be undercut in a heavy node.
float least_side_weight(float known_weight, unsigned int classes, float min_weight);

// The price of having chosen among several cuts, in bits per unit of weight: log2(candidates), spread over the total
// weight or, if the options say so, over the number of cases. J. R. Quinlan, Journal of Artificial Intelligence
// Research 4 (1996), 77-90.
float cut_point_penalty(unsigned int candidates, float total_weight, std::size_t case_count, const options* opts);

class cut_search {
 public:
  // Entry c of a table by class code is the weight of class c; entry 0 is unused.
  using class_weights = std::vector<float>;

  // `known` holds the class weights of all cases whose value is known.
  cut_search(const class_weights& known, float unknown_weight, float total_weight, float min_weight);

  // Whether the known cases are heavy enough for two branches.
  bool splittable() const { return is_splittable; }

  // The bounds that the left weight of an admissible cut lies between.
  float least_left() const { return least_side; }
  float most_left() const { return known_weight - least_side; }

  // Counts an admissible cut, whether it is then evaluated or not.
  void count_candidate() { ++candidates; }

  // Rates the cut with these class weights on its sides; returns whether it is the best so far. Of equal gains, as they
  // round to float, the one evaluated earlier stays the best.
  bool evaluate(const class_weights& left, const class_weights& right, float left_weight);

  // Sets gain and split information of `result` to those of the best cut and returns true, or returns false when there
  // is none or its gain does not exceed the cut-point penalty.
  bool conclude(std::size_t case_count, const options* opts, column::splitting_desc& result) const;

 private:
  float total_weight;
  float unknown_weight;
  float known_weight;
  bool is_splittable;
  float info;
  float least_side;
  unsigned int candidates = 0;
  float best_gain = column::splitting_desc::no_split;
  float best_split_info = 0;
};

}  // namespace arbor::impls

#endif
