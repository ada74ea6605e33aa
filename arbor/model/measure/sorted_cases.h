// A node's cases in the order of their codes, stored in one of three ways:
//
//   packed_cases     one integer per case, if all cases weigh the same
//   gathered_cases   one record per case, in a sorted copy
//   cases_in_place   the caller's own sequence, read through the columns
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

// -- One integer per case --

// How a case is packed into 32 bits: the offset of its code in the range, then its class code in
// the lowest bits.
struct case_packing {
  case_packing(const code_bounds& range, unsigned int class_count);

  bool fits() const { return class_bits + code_bits <= 32; }

  unsigned int code_before_range;
  unsigned int class_bits;
  unsigned int code_bits;
};

// If all cases weigh the same, only the code and the class of each matter, and the order among
// equal codes does not.
class packed_cases {
 public:
  // `sorted` points to `count` packed cases in the order of their codes, and stays the caller's.
  // Each weighs `weight_of_each`; the unknown cases weigh `weight_of_unknown` together.
  packed_cases(const case_packing& packing, const unsigned int* sorted, std::size_t count,
               unsigned int weight_of_each, unsigned int weight_of_unknown)
      : packed(packing),
        known(sorted),
        known_count(count),
        each(weight_of_each),
        unknown(weight_of_unknown) {}

  std::size_t size() const { return known_count; }
  unsigned int code(std::size_t i) const {
    return packed.code_before_range + (known[i] >> packed.class_bits);
  }
  unsigned int class_code(std::size_t i) const {
    return known[i] & ((1U << packed.class_bits) - 1);
  }
  unsigned int weight(std::size_t /*i*/ = 0) const { return each; }
  float unknown_weight() const { return static_cast<float>(unknown); }

 private:
  case_packing packed;
  const unsigned int* known;
  std::size_t known_count;
  unsigned int each;
  unsigned int unknown;
};

constexpr std::size_t most_compared = 64;  // cases; more are sorted faster digit by digit

// Sorts packed cases by their codes. `numbers` holds `count` of them, and as many again of room if
// `count` is above `most_compared`; returns where in it the sorted ones begin.
const unsigned int* sort_packed(unsigned int* numbers, std::size_t count,
                                const case_packing& packing);

// Packs each case whose value is known into `numbers`, and sets `known` to their number. Returns
// whether all of them have a class: the weight of one without a class belongs to no class's sum,
// which packed cases cannot express.
template <class CodeOf, class ClassOf>
bool pack(CodeOf code_of, ClassOf class_of, const w_sequence& cases, const case_packing& packing,
          unsigned int* numbers, std::size_t& known) {
  bool all_have_a_class = true;
  unsigned int* next = numbers;
  for (const auto& c : cases) {
    const auto code = static_cast<unsigned int>(code_of(c.first));
    if (code == 0) continue;  // its class is not read
    const unsigned int class_code = class_of(c.first);
    all_have_a_class = all_have_a_class & (class_code != 0);
    *next++ = (code - packing.code_before_range) << packing.class_bits | class_code;
  }
  known = static_cast<std::size_t>(next - numbers);
  return all_have_a_class;
}

// Calls `use` with the packed cases and returns true. Returns false if they cannot be packed: their
// weights are not all the same whole number, code and class do not fit into 32 bits, or a class is
// unknown.
template <class CodeOf, class Use>
bool with_packed_cases(CodeOf code_of, const column& class_column, const w_sequence& cases,
                       const code_bounds& range, Use use) {
  const even_weight weight(cases);
  const case_packing packing(range, class_column.get_distinct() - 1);
  const std::size_t count = cases.size();
  if (!packing.fits() || !weight.likely() || !weight.is_of_all(cases)) return false;
  strata::util::work_array<unsigned int, most_compared> numbers(
      count <= most_compared ? count : 2ULL * count, strata::util::first_values::any);
  std::size_t known = 0;
  bool packed = false;
  with_codes(class_column, [&](auto class_of) {
    packed = pack(code_of, class_of, cases, packing, numbers.data(), known);
  });
  if (!packed) return false;
  const unsigned int* const sorted = sort_packed(numbers.data(), known, packing);
  const auto unknown = static_cast<unsigned int>(count - known);
  use(packed_cases(packing, sorted, known, weight.value(), unknown * weight.value()));
  return true;
}

// -- One record per case --

// The code and class of a case are read several times; in the columns they are far apart.
template <class Code>
struct coded_case {
  Code code;
  unsigned int class_code;
  float weight;
};

// Cases of any weight. Equal codes stay in the order of the cases, however they are sorted, so that
// float sums over them have one value.
template <class Code>
class gathered_cases {
 public:
  gathered_cases(stored_codes<Code> code_of, const column& class_column, const w_sequence& cases,
                 const code_bounds& range)
      : all(cases.size(), strata::util::first_values::any) {
    with_codes(class_column, [&](auto class_of) {
      const auto coded = [&](const w_sequence::value_type& c, Code code) {
        return coded_case<Code>{code, code == 0 ? 0 : class_of(c.first), c.second};
      };
      if (counting_pays(cases.size(), range)) {
        place_by_count(code_of, coded, cases, range);
      } else {
        coded_case<Code>* next = all.data();
        for (const auto& c : cases) *next++ = coded(c, code_of(c.first));
        std::stable_sort(all.data(), next,
                         [](const auto& a, const auto& b) { return a.code < b.code; });
      }
    });
    for (known = all.data(); size() > 0 && known->code == 0; ++known) unknown += known->weight;
  }

  float unknown_weight() const { return unknown; }
  std::size_t size() const { return static_cast<std::size_t>(all.data() + all.size() - known); }
  Code code(std::size_t i) const { return known[i].code; }
  unsigned int class_code(std::size_t i) const { return known[i].class_code; }
  float weight(std::size_t i) const { return known[i].weight; }

 private:
  template <class Coded>
  void place_by_count(stored_codes<Code> code_of, Coded coded, const w_sequence& cases,
                      const code_bounds& range) {
    const unsigned int before = range.first - 1;
    const auto key_of = [before](Code code) {
      return code == 0 ? 0 : static_cast<unsigned int>(code) - before;
    };
    strata::util::work_array<unsigned int, 64> next(range.second - range.first + 1ULL);
    for (const auto& c : cases) ++next[key_of(code_of(c.first))];
    unsigned int first = 0;
    for (std::size_t key = 0; key < next.size(); ++key) {
      const unsigned int count = next[key];
      next[key] = first;
      first += count;
    }
    for (const auto& c : cases) {
      const Code code = code_of(c.first);
      all[next[key_of(code)]++] = coded(c, code);
    }
  }

  strata::util::work_array<coded_case<Code>, 16> all;
  const coded_case<Code>* known = nullptr;
  float unknown = 0;
};

// -- The caller's own sequence --

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
