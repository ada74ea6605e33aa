// A node's cases in the order of their codes, whatever they weigh. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_CODED_CASES_H
#define ARBOR_MODEL_MEASURE_CODED_CASES_H

#include <algorithm>
#include <vector>

#include "arbor/model/code_readers.h"
#include "arbor/utils/counting_sort.h"
#include "arbor/utils/nocopy.h"

namespace arbor::impls {

// A case with its code and class: they are read several times, and in the columns they lie
// scattered.
template <class T>
struct coded_case {
  T code;
  unsigned int class_code;
  float weight;
};

template <class T>
class coded_cases : private strata::util::nocopy {
 public:
  // With `copy_cases` false `cases` are put into that order as well, even if this then throws.
  coded_cases(const column_typed<T>& rated, const column& class_column, w_sequence& cases,
              const strata::util::pair<unsigned int, unsigned int>& code_range, bool copy_cases) {
    if (copy_cases) {
      gather(rated, class_column, cases);
      order_by_code(
          all, [](const coded_case<T>& c) { return static_cast<unsigned int>(c.code); },
          [](const coded_case<T>& a, const coded_case<T>& b) { return a.code < b.code; },
          code_range);
    } else {
      order_by_code(cases, typename column_typed<T>::get_index_struct{&rated},
                    typename column_typed<T>::less_than_struct{&rated}, code_range);
      gather(rated, class_column, cases);
    }
    for (known = all.data(); size() > 0 && known->code == 0; ++known) unknown += known->weight;
  }

  float unknown_weight() const { return unknown; }

  // The cases whose value is known, in the order of their codes.
  std::size_t size() const { return static_cast<std::size_t>(all.data() + all.size() - known); }
  T code(std::size_t i) const { return known[i].code; }
  unsigned int class_code(std::size_t i) const { return known[i].class_code; }
  float weight(std::size_t i) const { return known[i].weight; }

 private:
  void gather(const column_typed<T>& rated, const column& class_column, const w_sequence& cases) {
    all.reserve(cases.size());
    const stored_codes<T> code_of{rated.codes().data()};
    with_codes(class_column, [&](auto class_of) {
      for (const auto& [row, weight] : cases) {
        const T code = code_of(row);
        all.push_back({code, code == 0 ? 0 : class_of(row), weight});
      }
    });
  }

  // Puts the unknown cases (code 0) first; equal codes end in no order to rely on. Either sort
  // moves whatever stands for the cases in the same way, so that float sums over them do not depend
  // on what does.
  template <class Case, class Key, class Less>
  static void order_by_code(std::vector<Case>& cases, Key key, Less less,
                            const strata::util::pair<unsigned int, unsigned int>& code_range) {
    // Counting is linear in the cases and in the keys: it pays until there are far more keys than
    // cases.
    constexpr unsigned int most_keys_per_case = 16;
    const unsigned int unknown_key = code_range.first - 1;
    const unsigned int keys = code_range.second - unknown_key;
    if (keys / static_cast<unsigned int>(cases.size()) <= most_keys_per_case) {
      strata::adt::counting_sort<Case, Key>(cases.begin(), cases.end(), unknown_key,
                                            code_range.second, key, unknown_key);
    } else {
      std::sort(cases.begin(), cases.end(), less);
    }
  }

  std::vector<coded_case<T>> all;
  const coded_case<T>* known = nullptr;
  float unknown = 0;
};

}  // namespace arbor::impls

#endif
