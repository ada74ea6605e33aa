// The class weights of a node's cases, for each value code of a column: one pass over the cases that the discrete
// measure and the one by class weights per code share. Internal to the model.
#ifndef ARBOR_MODEL_CLASS_TALLY_H
#define ARBOR_MODEL_CLASS_TALLY_H

#include <algorithm>
#include <numeric>

#include "arbor/model/code_readers.h"
#include "arbor/model/whole_weights.h"
#include "arbor/utils/work_array.h"

namespace arbor::impls {

class class_tally {
 public:
  // `code_of` reads the rated column's code of a row; the known codes among `cases` lie in `code_range`.
  template <class CodeOf>
  class_tally(CodeOf code_of, const column& class_column, const w_sequence& cases,
              const strata::util::pair<unsigned int, unsigned int>& code_range)
      : row_count(code_range.second - code_range.first + 1),
        stride(class_column.get_distinct()),
        weights(1ULL * row_count * stride),
        class_totals(stride) {
    const unsigned int before_first = code_range.first - 1;
    with_codes(class_column, [&](auto class_of) {
      const std::size_t counted = add_whole(code_of, class_of, cases, before_first);
      if (counted > 0) add_up_rows();
      is_whole = counted == cases.size();
      if (!is_whole) add_in_order(code_of, class_of, cases, counted, before_first);
    });
  }

  // Row i, from 1 on, belongs to the i-th code of the range. Row 0 is the unknown value's, and for nobody to read.
  unsigned int rows() const { return row_count; }
  unsigned int classes() const { return static_cast<unsigned int>(stride - 1); }
  // The weights of the classes 1 to classes() in a row.
  const float* row(unsigned int i) const { return weights.data() + i * stride + 1; }
  // Those of all known cases.
  const float* totals() const { return class_totals.data() + 1; }
  float unknown_weight() const { return unknown; }
  // That of all cases.
  float weight() const { return std::accumulate(totals(), totals() + classes(), unknown); }
  // Whether all weights are whole numbers, whose sums are exact.
  bool whole() const { return is_whole; }

 private:
  // Takes the first cases, as long as their weights are whole, and returns how many. Sums of such weights are exact, so
  // that those of classes and of unknown cases can be taken from the table in the end.
  template <class CodeOf, class ClassOf>
  std::size_t add_whole(CodeOf code_of, ClassOf class_of, const w_sequence& cases, unsigned int before_first) {
    constexpr std::size_t block = 1024;  // stays in the nearest cache between the look at its weights and the sums
    const whole_weights are_whole(cases.size());
    float* const table = weights.data();
    std::size_t taken = 0;
    while (taken < cases.size()) {
      const auto* const begin = cases.data() + taken;
      const auto* const end = begin + std::min(block, cases.size() - taken);
      if (!are_whole.hold(begin, end)) break;
      for (const auto* c = begin; c != end; ++c) {
        const auto code = code_of(c->first);
        const unsigned int row = code == 0 ? 0 : static_cast<unsigned int>(code) - before_first;
        table[row * stride + class_of(c->first)] += c->second;
      }
      taken += static_cast<std::size_t>(end - begin);
    }
    return taken;
  }

  // Several rows side by side: each sum would have to wait for the one before.
  void add_up_rows() {
    for (std::size_t c = 0; c < stride; ++c) unknown += weights[c];
    constexpr std::size_t enough_sums = 64;
    const std::size_t width = stride * std::max<std::size_t>(1, enough_sums / stride);
    strata::util::work_array<float, enough_sums> sums(width);
    std::size_t first = stride;
    for (; first + width <= weights.size(); first += width) {
      for (std::size_t i = 0; i < width; ++i) sums[i] += weights[first + i];
    }
    for (std::size_t i = 0; first + i < weights.size(); ++i) sums[i] += weights[first + i];
    for (std::size_t i = 0; i < width; ++i) class_totals[i % stride] += sums[i];
  }

  // Takes the cases from `next` on, one after the other: float sums depend on the order.
  template <class CodeOf, class ClassOf>
  void add_in_order(CodeOf code_of, ClassOf class_of, const w_sequence& cases, std::size_t next,
                    unsigned int before_first) {
    for (; next < cases.size(); ++next) {
      const auto& [row, weight] = cases[next];
      const auto code = code_of(row);
      if (code == 0) {
        unknown += weight;
        continue;
      }
      const unsigned int class_code = class_of(row);
      weights[(static_cast<unsigned int>(code) - before_first) * stride + class_code] += weight;
      class_totals[class_code] += weight;
    }
  }

  unsigned int row_count;
  std::size_t stride;
  strata::util::work_array<float, 64> weights;
  strata::util::work_array<float, 16> class_totals;  // by class code; entry 0 as unused as in the rows
  float unknown = 0;
  bool is_whole = false;
};

}  // namespace arbor::impls

#endif
