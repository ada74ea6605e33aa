// The class weights of a node's cases, for each value code of a column: one pass over the cases that the discrete
// measure and the one by class weights per code share. Internal to the model.
#ifndef ARBOR_MODEL_CLASS_TALLY_H
#define ARBOR_MODEL_CLASS_TALLY_H

#include <vector>

#include "arbor/model/code_readers.h"
#include "arbor/utils/allocatable.h"

namespace arbor::impls {

class class_tally {
 public:
  // `code_of` reads the rated column's code of a row; the known codes among `cases` lie in `code_range`.
  template <class CodeOf>
  class_tally(CodeOf code_of, const column& class_column, const w_sequence& cases,
              const strata::util::pair<unsigned int, unsigned int>& code_range)
      : row_count(code_range.second - code_range.first + 1),
        stride(class_column.get_distinct()),
        weights(strata::util::allocatable<float>(1ULL * row_count * stride), 0.0F),
        class_totals(stride, 0.0F) {
    const unsigned int before_first = code_range.first - 1;
    with_class_codes(class_column, [&](auto class_of) {
      for (const auto& [row, weight] : cases) {
        const auto code = code_of(row);
        if (code == 0) {
          unknown += weight;
          continue;
        }
        const unsigned int class_code = class_of(row);
        weights[(static_cast<unsigned int>(code) - before_first) * stride + class_code] += weight;
        class_totals[class_code] += weight;
      }
    });
  }

  // Row i, from 1 on, belongs to the i-th code of the range; row 0, the unknown value's, stays empty.
  unsigned int rows() const { return row_count; }
  unsigned int classes() const { return static_cast<unsigned int>(stride - 1); }
  // The weights of the classes 1 to classes() in a row.
  const float* row(unsigned int i) const { return weights.data() + i * stride + 1; }
  // Those of all known cases: entry 0 is unused, as in every table by class code.
  const std::vector<float>& totals() const { return class_totals; }
  float unknown_weight() const { return unknown; }

 private:
  unsigned int row_count;
  std::size_t stride;
  std::vector<float> weights;
  std::vector<float> class_totals;
  float unknown = 0;
};

}  // namespace arbor::impls

#endif
