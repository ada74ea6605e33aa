// The class weights per code are the attribute-value-class sets of J. Gehrke, R. Ramakrishnan and
// V. Ganti, "RainForest: a framework for fast decision tree construction of large datasets", VLDB
// 1998.

#include "arbor/model/measure/rainforest_quality.h"

#include <algorithm>
#include <numeric>

#include "arbor/model/measure/cut_search.h"

namespace arbor::impls {

namespace {

// Whether cases fall on a row of the tally.
template <class Weight>
bool occurs(const class_tally<Weight>& tally, unsigned int i) {
  const Weight* row = tally.row(i);
  return std::accumulate(row, row + tally.classes(), Weight()) != 0;
}

template <class Weight, class Search>
void sweep(const class_tally<Weight>& tally, Search& search) {
  unsigned int last = tally.rows() - 1;
  while (last > 0 && !occurs(tally, last)) --last;
  for (unsigned int i = 1; i < last; ++i) {
    if (!occurs(tally, i)) continue;
    search.move_all(tally.row(i));
    if (search.too_low()) continue;
    if (search.too_high()) break;
    search.count_candidate();
    search.evaluate(i);
  }
}

}  // namespace

template <class Weight>
void rate_rainforest(const class_tally<Weight>& tally, unsigned int first_code, float total_weight,
                     std::size_t case_count, float min_weight, const options* opts,
                     column::splitting_desc& result) {
  result.set_no_split();
  strata::util::work_array<float, 16> classes(tally.classes());
  std::copy_n(tally.totals(), tally.classes(), classes.data());
  const node_weights node{classes.data(), tally.classes(),
                          static_cast<float>(tally.unknown_weight()), total_weight, min_weight};
  if (!node.splittable()) return;
  const auto rate = [&](auto& search) {
    sweep(tally, search);
    if (!search.conclude(case_count, opts, result)) return;
    const auto best_row = static_cast<unsigned int>(search.best_place());
    unsigned int next_row = best_row + 1;
    while (!occurs(tally, next_row)) ++next_row;
    result.low_code = best_row + first_code - 1;
    result.high_code = next_row + first_code - 1;
  };
  if (tally.classes() == 2) {
    with_cut_search<2, Weight>(node, tally.rows(), rate);
  } else {
    with_cut_search<0, Weight>(node, tally.rows(), rate);
  }
}

template void rate_rainforest(const class_tally<float>&, unsigned int, float, std::size_t, float,
                              const options*, column::splitting_desc&);
template void rate_rainforest(const class_tally<unsigned int>&, unsigned int, float, std::size_t,
                              float, const options*, column::splitting_desc&);

}  // namespace arbor::impls
