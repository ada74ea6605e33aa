// The class weights of a node's cases for each value code of a column, as in class_table, but
// without zeros: for so many values and classes that most pairs of them do not occur. Internal to
// the model.
//
//   const sparse_class_table table(code_of, class_column, cases, code_range);
//   for (unsigned int i = 1; i < table.rows(); ++i) use(table.weights_in_row(i));
#ifndef ARBOR_MODEL_MEASURE_SPARSE_CLASS_TABLE_H
#define ARBOR_MODEL_MEASURE_SPARSE_CLASS_TABLE_H

#include <cstdint>
#include <utility>
#include <vector>

#include "arbor/model/measure/class_table.h"

namespace arbor::impls {

// Takes memory in proportion to the cases and the classes, whatever the range of codes is. The
// measures get the same bits from it as from class_table: the weights of a value and a class are
// added up in the order of the cases, and the zeros that are missing change no sum.
class sparse_class_table {
 public:
  // The arguments are those of with_class_table.
  template <class CodeOf>
  sparse_class_table(CodeOf code_of, const column& class_column, const w_sequence& cases,
                     const strata::util::pair<unsigned int, unsigned int>& range);

  // Rows belong to the codes that occur, in ascending order; row 0 stands for the unknown value.
  unsigned int rows() const { return static_cast<unsigned int>(row_begins.size()); }
  // How many codes of the range do not occur.
  unsigned int empty_rows() const { return codes_in_range + 1 - rows(); }
  unsigned int classes() const { return static_cast<unsigned int>(class_totals.size() - 1); }
  // The weights of the classes that occur in a row, from 1 on, in ascending order of the classes.
  row_weights<float> weights_in_row(unsigned int i) const {
    const float* const all = weights.data();
    const std::size_t end = i + 1 < rows() ? row_begins[i + 1] : weights.size();
    return {all + row_begins[i], all + end};
  }
  const float* totals() const { return class_totals.data() + 1; }
  float unknown_weight() const { return unknown; }

 private:
  struct known_case {
    std::uint64_t pair;  // of its code, in the upper half, and its class
    unsigned int row;
    float weight;
  };

  void read_classes(const column& class_column, std::vector<known_case>& known);
  void add_up(std::vector<known_case> known);

  unsigned int codes_in_range;
  std::vector<float> class_totals;      // by class code
  std::vector<float> weights;           // of the pairs that occur, in the order of their codes
  std::vector<std::size_t> row_begins;  // in `weights`
  float unknown = 0;
};

// -- Implementation --

template <class CodeOf>
sparse_class_table::sparse_class_table(CodeOf code_of, const column& class_column,
                                       const w_sequence& cases,
                                       const strata::util::pair<unsigned int, unsigned int>& range)
    : codes_in_range(range.second - range.first), class_totals(class_column.get_distinct()) {
  std::vector<known_case> known;
  known.reserve(cases.size());
  for (const auto& [row, weight] : cases) {
    const std::uint64_t code = code_of(row);
    if (code == 0) {
      unknown += weight;
    } else {
      known.push_back({code << 32U, row, weight});
    }
  }
  read_classes(class_column, known);
  add_up(std::move(known));
}

}  // namespace arbor::impls

#endif
