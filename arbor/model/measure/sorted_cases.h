// A node's cases in the order of their codes, stored in one of two ways:
//
//   packed_cases     records of a code, a class and, unless all are equal, a weight
//   cases_in_place   a sequence of cases, read through the columns
//
// Each has the known cases as numbers from 0 to before size(), with code(i), class_code(i) and
// weight(i), and the weight of the others as unknown_weight(). Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_SORTED_CASES_H
#define ARBOR_MODEL_MEASURE_SORTED_CASES_H

#include <algorithm>
#include <vector>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/even_weight.h"
#include "arbor/utils/counting_sort.h"
#include "arbor/utils/work_array.h"

namespace arbor::impls {

using code_bounds = strata::util::pair<unsigned int, unsigned int>;

// Whether to sort by counting the cases of each code, which is linear in the cases and the codes:
// it pays until there are far more codes than cases. `cases` is not 0.
inline bool counting_pays(std::size_t cases, const code_bounds& range) {
  constexpr unsigned int most_keys_per_case = 16;
  const auto keys = range.second - range.first + 1ULL;  // the unknown value has one, too
  return keys / cases <= most_keys_per_case;
}

// -- Packed cases --

// How the code and the class of a case are packed into 32 bits: the offset of its code in the
// range, then its class code in the lowest bits.
struct case_packing {
  case_packing(const code_bounds& range, unsigned int class_count);

  bool fits() const { return class_bits + code_bits <= 32; }
  unsigned int pack(unsigned int code, unsigned int class_code) const {
    return (code - code_before_range) << class_bits | class_code;
  }

  unsigned int code_before_range;
  unsigned int class_bits;
  unsigned int code_bits;
};

// A case is a counted_case if all cases weigh the same whole number, else a weighed_case.
struct counted_case {
  using weight_type = unsigned int;

  counted_case() = default;
  counted_case(unsigned int code_and_class, float /*weight*/) : packed(code_and_class) {}
  unsigned int weight(unsigned int of_each) const { return of_each; }

  unsigned int packed;
};
struct weighed_case {
  using weight_type = float;

  weighed_case() = default;
  weighed_case(unsigned int code_and_class, float weight)
      : packed(code_and_class), own_weight(weight) {}
  float weight(unsigned int /*of_each*/) const { return own_weight; }

  unsigned int packed;
  float own_weight;
};

template <class Case>
class packed_cases {
 public:
  // `sorted` points to `count` packed cases in the order of their codes, and stays the caller's.
  // Counted cases weigh `weight_of_each`; the unknown ones weigh `weight_of_unknown` together.
  packed_cases(const case_packing& packing, const Case* sorted, std::size_t count,
               unsigned int weight_of_each, float weight_of_unknown)
      : packed(packing),
        known(sorted),
        known_count(count),
        each(weight_of_each),
        unknown(weight_of_unknown) {}

  std::size_t size() const { return known_count; }
  unsigned int code(std::size_t i) const {
    return packed.code_before_range + (known[i].packed >> packed.class_bits);
  }
  unsigned int class_code(std::size_t i) const {
    return known[i].packed & ((1U << packed.class_bits) - 1);
  }
  auto weight(std::size_t i) const { return known[i].weight(each); }
  float unknown_weight() const { return unknown; }

 private:
  case_packing packed;
  const Case* known;
  std::size_t known_count;
  unsigned int each;
  float unknown;
};

constexpr std::size_t most_compared = 32;  // cases; more are sorted faster digit by digit

// Sorts packed cases by their codes; those of the same code stay in order, so that float sums over
// them have one value. `cases` holds `count` of them, and as many again of room if `count` is above
// `most_compared`; returns where in it the sorted ones begin.
template <class Case>
const Case* sort_packed(Case* cases, std::size_t count, const case_packing& packing);

// Calls `use` with the packed cases and returns true. Returns false if a class is unknown: such a
// weight belongs to no class's sum, which the sweeps over packed cases do not expect.
template <class Case, class CodeOf, class Use>
bool with_cases_packed_as(CodeOf code_of, const column& class_column, const w_sequence& cases,
                          const case_packing& packing, unsigned int weight_of_each, Use use) {
  const std::size_t count = cases.size();
  strata::util::work_array<Case, most_compared> packed(
      count <= most_compared ? count : 2ULL * count, strata::util::first_values::any);
  Case* next = packed.data();
  float unknown = 0;
  bool all_have_a_class = true;
  with_codes(class_column, [&](auto class_of) {
    Case* place = next;  // these stay in registers
    float unknown_sum = 0;
    bool classes_known = true;
    for (const auto& c : cases) {
      const auto code = static_cast<unsigned int>(code_of(c.first));
      if (code == 0) {  // its class is not read
        unknown_sum += c.second;
        continue;
      }
      const unsigned int class_code = class_of(c.first);
      classes_known = classes_known & (class_code != 0);
      *place++ = Case(packing.pack(code, class_code), c.second);
    }
    next = place;
    unknown = unknown_sum;
    all_have_a_class = classes_known;
  });
  if (!all_have_a_class) return false;
  const auto known = static_cast<std::size_t>(next - packed.data());
  const Case* const sorted = sort_packed(packed.data(), known, packing);
  use(packed_cases<Case>(packing, sorted, known, weight_of_each, unknown));
  return true;
}

// Calls `use` with the packed cases and returns true. Returns false if they cannot be packed: code
// and class do not fit into 32 bits, or a class is unknown.
template <class CodeOf, class Use>
bool with_packed_cases(CodeOf code_of, const column& class_column, const w_sequence& cases,
                       const code_bounds& range, Use use) {
  const case_packing packing(range, class_column.get_distinct() - 1);
  if (!packing.fits()) return false;
  const even_weight weight(cases);
  return weight.likely() && weight.is_of_all(cases)
             ? with_cases_packed_as<counted_case>(code_of, class_column, cases, packing,
                                                  weight.value(), use)
             : with_cases_packed_as<weighed_case>(code_of, class_column, cases, packing, 0, use);
}

// -- A sequence of cases --

// Sorts the caller's own cases by the codes of `rated`. The order among equal codes is not
// specified.
template <class T>
void sort_in_place(const column_typed<T>& rated, w_sequence& cases, const code_bounds& range) {
  const unsigned int unknown_key = range.first - 1;
  if (counting_pays(cases.size(), range)) {
    using key = typename column_typed<T>::get_index_struct;
    strata::adt::counting_sort<w_sequence::value_type, key>(cases.begin(), cases.end(), unknown_key,
                                                            range.second, key{&rated}, unknown_key);
  } else {
    std::sort(cases.begin(), cases.end(), typename column_typed<T>::less_than_struct{&rated});
  }
}

// The same for a copy of the cases, in which equal codes stay in order.
template <class T>
void sort_stably(const column_typed<T>& rated, w_sequence& cases, const code_bounds& range) {
  if (counting_pays(cases.size(), range)) {
    const typename column_typed<T>::get_index_struct code_of{&rated};
    std::stable_sort(cases.begin(), cases.end(),
                     [&](const auto& a, const auto& b) { return code_of(a) < code_of(b); });
  } else {
    std::stable_sort(cases.begin(), cases.end(),
                     typename column_typed<T>::less_than_struct{&rated});
  }
}

template <class CodeOf>
class cases_in_place {
 public:
  // `sorted` and the columns must outlive it.
  cases_in_place(CodeOf reader, const column& class_column, const w_sequence& sorted)
      : code_of(reader), classes(class_column), known(sorted.data()), end(known + sorted.size()) {
    for (; known != end && code_of(known->first) == 0; ++known) unknown += known->second;
  }

  float unknown_weight() const { return unknown; }
  std::size_t size() const { return static_cast<std::size_t>(end - known); }
  auto code(std::size_t i) const { return code_of(known[i].first); }
  unsigned int class_code(std::size_t i) const { return classes.get_row_index(known[i].first); }
  float weight(std::size_t i) const { return known[i].second; }

 private:
  CodeOf code_of;
  const column& classes;
  const w_sequence::value_type* known;
  const w_sequence::value_type* end;
  float unknown = 0;
};

}  // namespace arbor::impls

#endif
