// The quality of the best threshold of a continuous column, by sorting the cases: for nodes with few cases per code.
// Internal to the model.
#ifndef ARBOR_MODEL_CONTINUOUS_QUALITY_H
#define ARBOR_MODEL_CONTINUOUS_QUALITY_H

#include <algorithm>
#include <vector>

#include "arbor/model/code_readers.h"
#include "arbor/model/cut_search.h"
#include "arbor/utils/counting_sort.h"

namespace arbor::impls {

// Orders cases by code, the unknown ones (code 0) first; equal codes end in no order to rely on.
template <class T>
void order_by_code(const column_typed<T>& rated, w_sequence& cases,
                   const strata::util::pair<unsigned int, unsigned int>& code_range) {
  using key = typename column_typed<T>::get_index_struct;
  // Counting is linear in the cases and in the keys: it pays until there are far more keys than cases.
  constexpr unsigned int most_keys_per_case = 16;
  const unsigned int unknown_key = code_range.first - 1;
  const unsigned int keys = code_range.second - unknown_key;
  if (keys / static_cast<unsigned int>(cases.size()) <= most_keys_per_case) {
    strata::adt::counting_sort<w_sequence::value_type, key>(cases.begin(), cases.end(), unknown_key, code_range.second,
                                                            key{&rated}, unknown_key);
  } else {
    std::sort(cases.begin(), cases.end(), typename column_typed<T>::less_than_struct{&rated});
  }
}

template <class T>
struct known_case {
  T code;
  unsigned int class_code;
  float weight;
};

// A node's cases in the order of their codes, gathered: the sweep reads each of them several times, and in the columns
// they lie scattered.
template <class T>
struct ordered_cases {
  std::vector<known_case<T>> known;
  cut_search::class_weights class_weights;  // of the known cases
  float unknown_weight = 0;

  // Takes cases that are already in order.
  ordered_cases(const column_typed<T>& rated, const column& class_column, const w_sequence& cases)
      : class_weights(class_column.get_distinct(), 0.0F) {
    const stored_codes<T> code_of{rated.codes().data()};
    auto first_known = cases.begin();
    for (; first_known != cases.end() && code_of(first_known->first) == 0; ++first_known) {
      unknown_weight += first_known->second;
    }
    known.reserve(static_cast<std::size_t>(cases.end() - first_known));
    with_class_codes(class_column, [&](auto class_of) {
      for (auto c = first_known; c != cases.end(); ++c) {
        known.push_back({code_of(c->first), class_of(c->first), c->second});
        class_weights[known.back().class_code] += c->second;
      }
    });
  }
};

// Whether a cut behind case `p` would lie inside a run of its class, given that no other class has been seen since the
// last evaluated cut: all cases of the next code are of this class too, and the cut behind them is admissible. The best
// cut is never inside a run (U. M. Fayyad and K. B. Irani, Machine Learning 8 (1992), 87-102).
template <class T>
bool inside_run(const std::vector<known_case<T>>& known, std::size_t p, float left_weight, float most_left) {
  const unsigned int class_code = known[p].class_code;
  std::size_t q = p + 1;
  float left_of_next_cut = left_weight + known[q].weight;
  while (left_of_next_cut <= most_left && known[q].class_code == class_code && q + 1 < known.size() &&
         known[q + 1].code == known[q].code) {
    ++q;
    left_of_next_cut += known[q].weight;
  }
  return known[q].class_code == class_code && left_of_next_cut <= most_left;
}

// Moves the cut from the lowest to the highest code. `codes` receives the codes on either side of the best one.
template <class T>
void sweep(const ordered_cases<T>& cases, cut_search& search, strata::util::pair<T, T>& codes) {
  const std::vector<known_case<T>>& known = cases.known;
  if (known.size() < 2) return;
  cut_search::class_weights left(cases.class_weights.size(), 0.0F);
  cut_search::class_weights right = cases.class_weights;
  float left_weight = 0;
  unsigned int previous_class = known.front().class_code;
  bool class_changed = false;  // between consecutive cases, since the last evaluated cut
  for (std::size_t p = 0; p + 1 < known.size(); ++p) {
    const known_case<T>& here = known[p];
    const known_case<T>& next = known[p + 1];
    class_changed = class_changed || here.class_code != previous_class;
    previous_class = here.class_code;
    left[here.class_code] += here.weight;
    right[here.class_code] -= here.weight;
    left_weight += here.weight;
    if (left_weight < search.least_left()) continue;
    if (left_weight > search.most_left()) break;
    if (here.code == next.code) continue;
    search.count_candidate();
    if (!class_changed && inside_run(known, p, left_weight, search.most_left())) continue;
    previous_class = next.class_code;
    class_changed = false;
    if (search.evaluate(left, right, left_weight)) codes = {here.code, next.code};
  }
}

// Sets gain and split information of `result` and, where there is a split, its codes. `cases` are reordered; the other
// arguments mean what they mean in column::quality_measure.
template <class T>
void rate_continuous(const column_typed<T>& rated, const column& class_column, float total_weight, w_sequence& cases,
                     const strata::util::pair<unsigned int, unsigned int>& code_range, float min_weight,
                     const options* opts, column::splitting_desc& result) {
  result.set_no_split();
  if (cases.empty()) return;
  order_by_code(rated, cases, code_range);
  const ordered_cases<T> ordered(rated, class_column, cases);
  cut_search search(ordered.class_weights, ordered.unknown_weight, total_weight, min_weight);
  if (!search.splittable()) return;
  strata::util::pair<T, T> codes{0, 0};
  sweep(ordered, search, codes);
  if (!search.conclude(cases.size(), opts, result)) return;
  result.low_code = static_cast<unsigned int>(codes.first);
  result.high_code = static_cast<unsigned int>(codes.second);
}

}  // namespace arbor::impls

#endif
