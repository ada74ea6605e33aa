// The class weights of a node's cases, for each value code of a column: one pass over the cases
// that the discrete measure and the one by class weights per code share. Internal to the model.
//
//   with_class_tally(code_of, class_column, cases, code_range, [&](const auto& tally) {
//     for (unsigned int i = 1; i < tally.rows(); ++i) use(tally.row(i));
//   });
#ifndef ARBOR_MODEL_MEASURE_CLASS_TALLY_H
#define ARBOR_MODEL_MEASURE_CLASS_TALLY_H

#include <algorithm>
#include <type_traits>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/even_weight.h"
#include "arbor/model/measure/weight_if.h"
#include "arbor/utils/work_array.h"

namespace arbor::impls {

// Weight is float; or unsigned int where weights are whole numbers with a sum that float holds
// exactly.
template <class Weight>
class class_tally {
 public:
  // Without cases. The known codes lie in `range`.
  class_tally(const strata::util::pair<unsigned int, unsigned int>& range,
              unsigned int distinct_classes)
      : before_first(range.first - 1),
        row_count(range.second - before_first),
        stride(distinct_classes),
        weights(1ULL * row_count * stride),
        class_totals(stride) {}

  // Row i, from 1 on, belongs to the i-th code of the range. Row 0 is the unknown value's, and for
  // nobody to read.
  unsigned int rows() const { return row_count; }
  unsigned int classes() const { return static_cast<unsigned int>(stride - 1); }
  // The weights of the classes 1 to classes() in a row.
  const Weight* row(unsigned int i) const { return weights.data() + i * stride + 1; }
  // Those of all known cases.
  const Weight* totals() const { return class_totals.data() + 1; }
  Weight unknown_weight() const { return unknown; }

 private:
  template <class CodeOf, class Use>
  friend void with_class_tally(CodeOf code_of, const column& class_column, const w_sequence& cases,
                               const strata::util::pair<unsigned int, unsigned int>& range,
                               Use use);

  // Takes cases as long as each weighs what `weight` says, in whole blocks, and returns how many.
  template <class CodeOf, class ClassOf>
  std::size_t count_even(CodeOf code_of, ClassOf class_of, const w_sequence& cases,
                         const even_weight& weight);
  // Puts weights in the place of the counts. They are exact in any order, so that those of classes
  // and of unknown cases can be taken from the table.
  void weigh_counts(unsigned int weight);
  // Continues from counts.
  void add(const class_tally<unsigned int>& counted);
  // Takes the cases from `next` on, one after the other: float sums depend on the order.
  template <class CodeOf, class ClassOf>
  void add_in_order(CodeOf code_of, ClassOf class_of, const w_sequence& cases, std::size_t next);

  template <class>
  friend class class_tally;

  unsigned int before_first;  // code of the range
  unsigned int row_count;
  std::size_t stride;
  strata::util::work_array<Weight, 64> weights;
  strata::util::work_array<Weight, 16>
      class_totals;  // by class code; entry 0 is as unused as in the rows
  Weight unknown = 0;
};

// Calls `use` with the tally of `cases`. `code_of` reads the rated column's code of a row.
template <class CodeOf, class Use>
void with_class_tally(CodeOf code_of, const column& class_column, const w_sequence& cases,
                      const strata::util::pair<unsigned int, unsigned int>& range, Use use) {
  const even_weight weight(cases);
  const unsigned int distinct_classes = class_column.get_distinct();
  std::size_t counted = 0;
  const auto use_sums = [&](class_tally<float>& sums) {
    with_codes(class_column,
               [&](auto class_of) { sums.add_in_order(code_of, class_of, cases, counted); });
    use(sums);
  };
  if (!weight.likely()) {
    class_tally<float> sums(range, distinct_classes);
    use_sums(sums);
    return;
  }
  class_tally<unsigned int> counts(range, distinct_classes);
  with_codes(class_column,
             [&](auto class_of) { counted = counts.count_even(code_of, class_of, cases, weight); });
  counts.weigh_counts(weight.value());
  if (counted == cases.size()) {
    use(counts);
  } else {
    class_tally<float> sums(range, distinct_classes);  // beside the counts; few nodes come to this
    sums.add(counts);
    use_sums(sums);
  }
}

template <class Weight>
template <class CodeOf, class ClassOf>
std::size_t class_tally<Weight>::count_even(CodeOf code_of, ClassOf class_of,
                                            const w_sequence& cases, const even_weight& weight) {
  constexpr std::size_t block = 4096;
  // A class column of a user's own is asked once for each case, and for none whose value is
  // unknown.
  if constexpr (std::is_same_v<ClassOf, virtual_indices>) return 0;
  const std::size_t width = stride;
  const unsigned int before = before_first;
  unsigned int* const table = weights.data();
  const auto cell = [=](const w_sequence::value_type& c) -> unsigned int& {
    const auto code = code_of(c.first);
    const unsigned int row = code == 0 ? 0 : static_cast<unsigned int>(code) - before;
    return table[row * width + class_of(c.first)];
  };
  std::size_t taken = 0;
  while (taken < cases.size()) {
    const auto* const begin = cases.data() + taken;
    const auto* const end = begin + std::min(block, cases.size() - taken);
    unsigned int difference = 0;
    for (const auto* c = begin; c != end; ++c) {
      difference |= weight.difference(c->second);
      ++cell(*c);
    }
    if (difference != 0) {
      for (const auto* c = begin; c != end; ++c) --cell(*c);
      break;
    }
    taken += static_cast<std::size_t>(end - begin);
  }
  return taken;
}

template <class Weight>
void class_tally<Weight>::weigh_counts(unsigned int weight) {
  if (weight != 1) {
    for (std::size_t i = 0; i < weights.size(); ++i) weights[i] *= weight;
  }
  for (std::size_t c = 0; c < stride; ++c) unknown += weights[c];
  // Several rows side by side, as long as there are many: each sum would have to wait for the one
  // before.
  constexpr std::size_t enough_sums = 64;
  std::size_t first = stride;
  if (weights.size() > 4 * enough_sums) {
    const std::size_t width = stride * std::max<std::size_t>(1, enough_sums / stride);
    strata::util::work_array<Weight, enough_sums> sums(width);
    for (; first + width <= weights.size(); first += width) {
      for (std::size_t i = 0; i < width; ++i) sums[i] += weights[first + i];
    }
    for (std::size_t i = 0; i < width; ++i) class_totals[i % stride] += sums[i];
  }
  for (; first < weights.size(); first += stride) {
    for (std::size_t c = 0; c < stride; ++c) class_totals[c] += weights[first + c];
  }
}

template <class Weight>
void class_tally<Weight>::add(const class_tally<unsigned int>& counted) {
  std::copy_n(counted.weights.data(), weights.size(), weights.data());
  std::copy_n(counted.class_totals.data(), stride, class_totals.data());
  unknown = static_cast<Weight>(counted.unknown);
}

template <class Weight>
template <class CodeOf, class ClassOf>
void class_tally<Weight>::add_in_order(CodeOf code_of, ClassOf class_of, const w_sequence& cases,
                                       std::size_t next) {
  const std::size_t width = stride;
  const unsigned int before = before_first;
  Weight* const table = weights.data();
  Weight* const totals = class_totals.data();
  // The sums of two classes stay in registers, where an addition need not wait until the last one
  // is stored.
  const bool two_classes = classes() == 2;
  Weight first_class = two_classes ? totals[1] : 0;
  Weight second_class = two_classes ? totals[2] : 0;
  Weight unknown_sum = unknown;
  const auto take = [&](const w_sequence::value_type& c, auto add_to_class) {
    const auto code = code_of(c.first);
    if (code == 0) {
      unknown_sum += c.second;
      return;
    }
    const unsigned int class_code = class_of(c.first);
    table[(static_cast<unsigned int>(code) - before) * width + class_code] += c.second;
    add_to_class(class_code, c.second);
  };
  if (two_classes) {
    for (; next < cases.size(); ++next) {
      take(cases[next], [&](unsigned int class_code, float weight) {
        first_class += weight_if(static_cast<unsigned int>(class_code == 1), weight);
        second_class += weight_if(static_cast<unsigned int>(class_code == 2), weight);
      });
    }
    totals[1] = first_class;
    totals[2] = second_class;
  } else {
    for (; next < cases.size(); ++next) {
      take(cases[next],
           [&](unsigned int class_code, float weight) { totals[class_code] += weight; });
    }
  }
  unknown = unknown_sum;
}

}  // namespace arbor::impls

#endif
