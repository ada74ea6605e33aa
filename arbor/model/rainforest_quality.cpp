// The class weights per code are the attribute-value-class sets of J. Gehrke, R. Ramakrishnan and V. Ganti,
// "RainForest: a framework for fast decision tree construction of large datasets", VLDB 1998.

#include "arbor/model/rainforest_quality.h"

#include <algorithm>
#include <vector>

#include "arbor/model/cut_search.h"

namespace arbor::impls {

namespace {

// The rows of a tally that cases fall on.
class occurring_rows {
 public:
  explicit occurring_rows(const class_tally& tally) : occurs(tally.rows(), false) {
    for (unsigned int i = 1; i < tally.rows(); ++i) {
      const float* row = tally.row(i);
      occurs[i] = std::any_of(row, row + tally.classes(), [](float weight) { return weight != 0; });
      if (occurs[i]) last_row = i;
    }
  }

  bool operator[](unsigned int i) const { return occurs[i]; }
  unsigned int last() const { return last_row; }  // 0 when there is none
  // The next such row after `i`, which is not the last one.
  unsigned int after(unsigned int i) const {
    do ++i;
    while (!occurs[i]);
    return i;
  }

 private:
  std::vector<bool> occurs;
  unsigned int last_row = 0;
};

}  // namespace

void rate_rainforest(const class_tally& tally, unsigned int first_code, float total_weight, std::size_t case_count,
                     float min_weight, const options* opts, column::splitting_desc& result) {
  result.set_no_split();
  cut_search search(tally.totals(), tally.unknown_weight(), total_weight, min_weight);
  if (!search.splittable()) return;

  const occurring_rows occurs(tally);
  cut_search::class_weights left(tally.totals().size(), 0.0F);
  cut_search::class_weights right = tally.totals();
  float left_weight = 0;
  unsigned int best_row = 0;
  for (unsigned int i = 1; i < occurs.last(); ++i) {
    if (!occurs[i]) continue;
    const float* row = tally.row(i);
    for (unsigned int c = 0; c < tally.classes(); ++c) {
      left[c + 1] += row[c];
      right[c + 1] -= row[c];
      left_weight += row[c];
    }
    if (left_weight < search.least_left()) continue;
    if (left_weight > search.most_left()) break;
    search.count_candidate();
    if (search.evaluate(left, right, left_weight)) best_row = i;
  }

  if (!search.conclude(case_count, opts, result)) return;
  result.low_code = best_row + first_code - 1;
  result.high_code = occurs.after(best_row) + first_code - 1;
}

}  // namespace arbor::impls
