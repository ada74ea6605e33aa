// The quality of the best threshold of a continuous column, by sorting the cases: for nodes with
// few cases per code. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_CONTINUOUS_QUALITY_H
#define ARBOR_MODEL_MEASURE_CONTINUOUS_QUALITY_H

#include "arbor/model/measure/coded_cases.h"
#include "arbor/model/measure/cut_search.h"
#include "arbor/model/measure/packed_cases.h"
#include "arbor/model/measure/two_class_quality.h"

namespace arbor::impls {

// Whether a cut behind case `p` would lie inside a run of its class, given that no other class has
// been seen since the last evaluated cut: all cases of the next code are of this class too, and the
// cut behind them is admissible. The best cut is never inside a run (U. M. Fayyad and K. B. Irani,
// Machine Learning 8 (1992), 87-102).
template <class Cases, class Search>
bool inside_run(const Cases& cases, const Search& search, std::size_t p) {
  const unsigned int class_code = cases.class_code(p);
  std::size_t q = p + 1;
  auto left_of_next_cut = search.left_weight();
  left_of_next_cut += search.as_weight(cases.weight(q));
  while (!search.too_high(left_of_next_cut) && cases.class_code(q) == class_code &&
         q + 1 < cases.size() && cases.code(q + 1) == cases.code(q)) {
    ++q;
    left_of_next_cut += search.as_weight(cases.weight(q));
  }
  return cases.class_code(q) == class_code && !search.too_high(left_of_next_cut);
}

// Moves the cut from the lowest to the highest code.
template <class Cases, class Search>
void sweep(const Cases& cases, Search& search) {
  if (cases.size() < 2) return;
  unsigned int previous_class = cases.class_code(0);
  bool class_changed = false;  // between consecutive cases, since the last evaluated cut
  for (std::size_t p = 0; p + 1 < cases.size(); ++p) {
    const unsigned int class_code = cases.class_code(p);
    class_changed = class_changed || class_code != previous_class;
    previous_class = class_code;
    search.move(class_code, search.as_weight(cases.weight(p)));
    if (cases.code(p) == cases.code(p + 1) || search.too_low()) continue;
    if (search.too_high()) break;
    search.count_candidate();
    if (!class_changed && inside_run(cases, search, p)) continue;
    previous_class = cases.class_code(p + 1);
    class_changed = false;
    search.evaluate(p);
  }
}

// Finds the best cut of cases in the order of their codes: packed_cases, with weights of unsigned
// int, or coded_cases, with floats. `result` holds the no-split mark before. The other arguments
// mean what they mean in column::quality_measure.
template <class Weight, class Cases>
void rate_ordered(const Cases& ordered, unsigned int class_count, float total_weight,
                  std::size_t case_count, float min_weight, const options* opts,
                  column::splitting_desc& result) {
  strata::util::work_array<float, 16> class_weights(class_count + 1ULL);
  for (std::size_t i = 0; i < ordered.size(); ++i) {
    class_weights[ordered.class_code(i)] += static_cast<float>(ordered.weight(i));
  }
  const node_weights node{class_weights.data() + 1, class_count, ordered.unknown_weight(),
                          total_weight, min_weight};
  if (!node.splittable()) return;
  with_cut_search<0, Weight>(node, ordered.size(), [&](auto& search) {
    sweep(ordered, search);
    if (!search.conclude(case_count, opts, result)) return;
    result.low_code = static_cast<unsigned int>(ordered.code(search.best_place()));
    result.high_code = static_cast<unsigned int>(ordered.code(search.best_place() + 1));
  });
}

// Sets gain and split information of `result` and, where there is a split, its codes. The arguments
// mean what they mean in column::quality_measure.
template <class T>
void rate_continuous(const column_typed<T>& rated, const column& class_column, float total_weight,
                     w_sequence& cases,
                     const strata::util::pair<unsigned int, unsigned int>& code_range,
                     float min_weight, const options* opts, bool copy_cases,
                     column::splitting_desc& result) {
  result.set_no_split();
  if (cases.empty()) return;
  const unsigned int class_count = class_column.get_distinct() - 1;
  // Codes of more than 32 bits are told in 32 only, but put in order by all.
  if constexpr (sizeof(T) <= sizeof(unsigned int)) {
    if (copy_cases && packed_cases::can_hold(code_range, class_count)) {
      const packed_cases packed(stored_codes<T>{rated.codes().data()}, class_column, cases,
                                code_range);
      if (packed.even() && class_count == 2) {
        rate_two_classes(packed, total_weight, cases.size(), min_weight, opts, result);
        return;
      }
      if (packed.even()) {
        rate_ordered<unsigned int>(packed, class_count, total_weight, cases.size(), min_weight,
                                   opts, result);
        return;
      }
    }
  }
  const coded_cases<T> ordered(rated, class_column, cases, code_range, copy_cases);
  rate_ordered<float>(ordered, class_count, total_weight, cases.size(), min_weight, opts, result);
}

}  // namespace arbor::impls

#endif
