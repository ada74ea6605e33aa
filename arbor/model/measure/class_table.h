// The class weights of a node's cases for each value code of a column, which the discrete measure
// and the count-table measure share: one pass over the cases. Internal to the model.
//
//   with_class_table(code_of, class_column, cases, code_range, [&](const auto& table) {
//     for (unsigned int i = 1; i < table.rows(); ++i) use(table.row(i));
//   });
#ifndef ARBOR_MODEL_MEASURE_CLASS_TABLE_H
#define ARBOR_MODEL_MEASURE_CLASS_TABLE_H

#include <algorithm>
#include <cstddef>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/even_weight.h"
#include "arbor/model/measure/weight_if.h"
#include "arbor/utils/work_array.h"

namespace arbor::impls {

// Some weights of a row of a table.
template <class Weight>
struct row_weights {
  const Weight* first;
  const Weight* last;

  const Weight* begin() const { return first; }
  const Weight* end() const { return last; }
  std::size_t size() const { return static_cast<std::size_t>(last - first); }
};

// The table as the measures read it. Weight is float, or unsigned int if all weights are the same
// whole number and float holds their sum exactly.
template <class Weight>
class class_table {
 public:
  using weight_type = Weight;

  // All zeros. The known codes of the cases must be in `range`.
  class_table(const strata::util::pair<unsigned int, unsigned int>& range,
              unsigned int distinct_classes)
      : code_before_range(range.first - 1),
        row_count(range.second - code_before_range),
        stride(distinct_classes),
        cells(cell_count(range, distinct_classes)),
        class_totals(stride) {}

  // Row i, from 1 on, belongs to the i-th code of the range. Row 0 stands for the unknown value and
  // stays empty: the class of a case whose value is unknown is not read.
  unsigned int rows() const { return row_count; }
  unsigned int classes() const { return static_cast<unsigned int>(stride - 1); }
  // How far row(i + 1) is behind row(i).
  std::size_t width() const { return stride; }
  // Returns the weights of the classes 1 to classes() in a row.
  const Weight* row(unsigned int i) const { return cells.data() + i * stride + 1; }
  row_weights<Weight> weights_in_row(unsigned int i) const { return {row(i), row(i) + classes()}; }
  // Returns those of all known cases.
  const Weight* totals() const { return class_totals.data() + 1; }
  Weight unknown_weight() const { return unknown; }

  // The numbers of the table: its cells, row by row from that of the unknown value on, and the
  // rest, totals and unknown weight. A table that has those of another one goes on where that one
  // ended: its cases may come in several parts, which different processes have.
  static std::size_t cell_count(const strata::util::pair<unsigned int, unsigned int>& range,
                                unsigned int distinct_classes) {
    return (range.second - range.first + 1ULL) * distinct_classes;
  }
  Weight* all_cells() { return cells.data(); }
  std::size_t rest_count() const { return class_totals.size() + 1; }
  void put_rest(Weight* numbers) const;
  void take_rest(const Weight* numbers);

 protected:
  unsigned int code_before_range;
  unsigned int row_count;
  std::size_t stride;  // class codes, that of the unknown value included
  strata::util::work_array<Weight, 64> cells;
  // By class code; entry 0 is unused, as in the rows.
  strata::util::work_array<Weight, 16> class_totals;
  Weight unknown = 0;
};

// The table of cases that all weigh the same whole number: they are counted.
class class_counts : public class_table<unsigned int> {
 public:
  using class_table::class_table;

  // Counts more cases and returns true. Returns false if a case has another weight; the table is
  // incomplete then and must not be used.
  template <class CodeOf, class ClassOf>
  bool count(CodeOf code_of, ClassOf class_of, const w_sequence& cases, const even_weight& weight);
  // Once all cases are counted: goes from their numbers to weights. Each case has this weight.
  void finish(unsigned int weight);

 private:
  void weigh(unsigned int weight);
  void add_up();
};

// The table of any other cases.
class class_sums : public class_table<float> {
 public:
  using class_table::class_table;

  // Adds more cases one after the other: float sums depend on the order.
  template <class CodeOf, class ClassOf>
  void add(CodeOf code_of, ClassOf class_of, const w_sequence& cases);
};

// Calls `use` with the table of `cases`. `code_of` reads the rated column's code of a row.
template <class CodeOf, class Use>
void with_class_table(CodeOf code_of, const column& class_column, const w_sequence& cases,
                      const strata::util::pair<unsigned int, unsigned int>& range, Use use) {
  const unsigned int distinct_classes = class_column.get_distinct();
  const even_weight weight(cases);
  if (weight.likely()) {
    class_counts counts(range, distinct_classes);
    bool even = false;
    with_codes(class_column,
               [&](auto class_of) { even = counts.count(code_of, class_of, cases, weight); });
    if (even) {
      counts.finish(weight.value());
      return use(counts);
    }
  }
  // The counts have been released, so there is only one table at a time.
  class_sums sums(range, distinct_classes);
  with_codes(class_column, [&](auto class_of) { sums.add(code_of, class_of, cases); });
  use(sums);
}

// -- Implementation --

template <class Weight>
void class_table<Weight>::put_rest(Weight* numbers) const {
  *std::copy_n(class_totals.data(), class_totals.size(), numbers) = unknown;
}

template <class Weight>
void class_table<Weight>::take_rest(const Weight* numbers) {
  std::copy_n(numbers, class_totals.size(), class_totals.data());
  unknown = numbers[class_totals.size()];
}

template <class CodeOf, class ClassOf>
bool class_counts::count(CodeOf code_of, ClassOf class_of, const w_sequence& cases,
                         const even_weight& weight) {
  constexpr std::size_t block = 4096;  // cases between two looks at their weights
  const std::size_t width = stride;
  const unsigned int before = code_before_range;
  unsigned int* const table = cells.data();
  unsigned int unknown_cases = 0;
  for (std::size_t begin = 0; begin < cases.size(); begin += block) {
    const std::size_t end = std::min(begin + block, cases.size());
    unsigned int difference = 0;
    for (std::size_t i = begin; i < end; ++i) {
      const auto [row, case_weight] = cases[i];
      difference |= weight.difference(case_weight);
      const auto code = code_of(row);
      if (code == 0) {
        ++unknown_cases;
      } else {
        ++table[(static_cast<unsigned int>(code) - before) * width + class_of(row)];
      }
    }
    if (difference != 0) return false;
  }
  unknown += unknown_cases;
  return true;
}

template <class CodeOf, class ClassOf>
void class_sums::add(CodeOf code_of, ClassOf class_of, const w_sequence& cases) {
  const std::size_t width = stride;
  const unsigned int before = code_before_range;
  float* const table = cells.data();
  float* const totals_by_class = class_totals.data();
  float unknown_sum = unknown;
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
  if (classes() == 2) {
    // Two sums stay in registers, where an addition need not wait until the last one is stored.
    // They are loaded rather than set to 0, so that g++ keeps both in one.
    float first_class = totals_by_class[1];
    float second_class = totals_by_class[2];
    for (const auto& c : cases) {
      take(c, [&](unsigned int class_code, float weight) {
        first_class += weight_if(static_cast<unsigned int>(class_code == 1), weight);
        second_class += weight_if(static_cast<unsigned int>(class_code == 2), weight);
      });
    }
    totals_by_class[1] = first_class;
    totals_by_class[2] = second_class;
  } else {
    for (const auto& c : cases) {
      take(c,
           [&](unsigned int class_code, float weight) { totals_by_class[class_code] += weight; });
    }
  }
  unknown = unknown_sum;
}

}  // namespace arbor::impls

#endif
