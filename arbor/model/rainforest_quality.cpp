// The class weights per code are the attribute-value-class sets of J. Gehrke, R. Ramakrishnan and V. Ganti,
// "RainForest: a framework for fast decision tree construction of large datasets", VLDB 1998.

#include "arbor/model/rainforest_quality.h"

#include <algorithm>

#include "arbor/model/cut_search.h"

namespace arbor::impls {

namespace {

// Whether cases fall on a row of the tally.
bool occurs(const class_tally& tally, unsigned int i) {
  const float* row = tally.row(i);
  return std::any_of(row, row + tally.classes(), [](float weight) { return weight != 0; });
}

template <class Weight, class Terms, unsigned int Classes>
void sweep(const class_tally& tally, cut_search<Weight, Terms, Classes>& search) {
  unsigned int last = tally.rows() - 1;
  while (last > 0 && !occurs(tally, last)) --last;
  for (unsigned int i = 1; i < last; ++i) {
    if (!occurs(tally, i)) continue;
    const float* row = tally.row(i);
    for (unsigned int c = 0; c < search.classes(); ++c) search.move(c + 1, static_cast<Weight>(row[c]));
    if (search.too_low()) continue;
    if (search.too_high()) break;
    search.count_candidate();
    search.evaluate(i);
  }
}

}  // namespace

void rate_rainforest(const class_tally& tally, unsigned int first_code, float total_weight, std::size_t case_count,
                     float min_weight, const options* opts, column::splitting_desc& result) {
  result.set_no_split();
  const node_weights node{tally.totals(), tally.classes(), tally.unknown_weight(), total_weight, min_weight};
  if (!node.splittable()) return;
  with_cut_search(node, tally.whole(), [&](auto& search) {
    sweep(tally, search);
    if (!search.conclude(case_count, opts, result)) return;
    const auto best_row = static_cast<unsigned int>(search.best_place());
    unsigned int next_row = best_row + 1;
    while (!occurs(tally, next_row)) ++next_row;
    result.low_code = best_row + first_code - 1;
    result.high_code = next_row + first_code - 1;
  });
}

}  // namespace arbor::impls
