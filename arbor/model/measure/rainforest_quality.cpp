// The class weights per code are the attribute-value-class sets of J. Gehrke, R. Ramakrishnan and
// V. Ganti, "RainForest: a framework for fast decision tree construction of large datasets",
// VLDB 1998.

#include "arbor/model/measure/rainforest_quality.h"

#include <algorithm>
#include <cstring>

#include "arbor/model/measure/cut_search.h"

namespace arbor::impls {

namespace {

// Moves a cut over the rows of the table that cases occur in.
template <class Weight>
class row_sweep {
 public:
  row_sweep(const class_table<Weight>& counted, unsigned int first_code)
      : table(counted), code_before_range(first_code - 1), last(table.rows() - 1) {
    while (last > 0 && !occurs(last)) --last;
  }

  template <class Sides>
  bool move_next(Sides& sides) {
    do {
      ++row;
      if (row >= last) return false;
    } while (!occurs(row));
    sides.move_all(table.row(row));
    return true;
  }

  std::size_t place() const { return row; }
  unsigned int low_code(std::size_t place) const {
    return code_before_range + static_cast<unsigned int>(place);
  }
  unsigned int high_code(std::size_t place) const {
    auto next = static_cast<unsigned int>(place) + 1;
    while (!occurs(next)) ++next;
    return code_before_range + next;
  }

  // Every cut is rated.
  template <class Search, class Sides>
  bool inside_run(const Search& /*search*/, const Sides& /*sides*/) const {
    return false;
  }

 private:
  // Whether a weight is not 0: weights have the same size, and 0 has no bits.
  bool occurs(unsigned int i) const {
    const Weight* const weights = table.row(i);
    unsigned int bits = 0;
    for (unsigned int c = 0; c < table.classes(); ++c) {
      unsigned int of_weight = 0;
      std::memcpy(&of_weight, weights + c, sizeof of_weight);
      bits |= of_weight;
    }
    return bits != 0;
  }

  const class_table<Weight>& table;
  unsigned int code_before_range;
  unsigned int last;
  unsigned int row = 0;  // the last one on the left side
};

}  // namespace

template <class Weight>
void rate_rainforest(const class_table<Weight>& table, unsigned int first_code, float total_weight,
                     std::size_t case_count, float min_weight, const options* opts,
                     column::splitting_desc& result) {
  result.set_no_split();
  strata::util::work_array<float, 16> class_weights(table.classes());
  std::copy_n(table.totals(), table.classes(), class_weights.data());
  const cut_problem node{class_weights.data(),
                         table.classes(),
                         static_cast<float>(table.unknown_weight()),
                         total_weight,
                         case_count,
                         min_weight,
                         opts};
  row_sweep<Weight> codes(table, first_code);
  if (table.classes() == 2) {
    find_best_cut<2, Weight>(node, table.rows(), codes, result);
  } else {
    find_best_cut<0, Weight>(node, table.rows(), codes, result);
  }
}

template void rate_rainforest(const class_table<float>&, unsigned int, float, std::size_t, float,
                              const options*, column::splitting_desc&);
template void rate_rainforest(const class_table<unsigned int>&, unsigned int, float, std::size_t,
                              float, const options*, column::splitting_desc&);

}  // namespace arbor::impls
