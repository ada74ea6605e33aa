#include "arbor/table/table.h"

#include <algorithm>
#include <limits>

#include "arbor/model/code_readers.h"

namespace arbor::tree {

bool is_attribute(const impls::column& column) {
  return !column.is_class() && !column.is_weights();
}

std::size_t unknown_cells(const impls::column& column, const impls::w_sequence& cases) {
  std::size_t count = 0;
  // A column without known values keeps no rows; its code of any row is 0.
  impls::with_codes(column, [&](auto code_of) {
    for (const auto& weighted : cases) count += code_of(weighted.first) == 0 ? 1 : 0;
  });
  return count;
}

strata::util::pair<unsigned int, unsigned int> occurring_range(const impls::column& column,
                                                               const impls::w_sequence& cases) {
  // One less than the least code. Code 0 becomes the greatest number there, which changes nothing.
  unsigned int before_least = std::numeric_limits<unsigned int>::max();
  unsigned int greatest = 0;
  impls::with_codes(column, [&](auto code_of) {
    for (const auto& weighted : cases) {
      const unsigned int code = code_of(weighted.first);
      before_least = std::min(before_least, code - 1);
      greatest = std::max(greatest, code);
    }
  });
  if (greatest == 0) return {0, 0};
  return {before_least + 1, greatest + 1};
}

float total_weight(const impls::w_sequence& cases) {
  double sum = 0;
  for (const auto& weighted : cases) sum += static_cast<double>(weighted.second);
  return static_cast<float>(sum);
}

std::vector<float> class_weights(const impls::column& classes, const impls::w_sequence& cases) {
  std::vector<double> sums(classes.get_distinct(), 0.0);
  add_class_weights(classes, cases, sums);
  return {sums.begin() + 1, sums.end()};
}

void add_class_weights(const impls::column& classes, const impls::w_sequence& cases,
                       std::vector<double>& sums) {
  double all = sums[0];
  impls::with_codes(classes, [&](auto class_of) {
    for (const auto& [row, weight] : cases) {
      sums[class_of(row)] += static_cast<double>(weight);
      all += static_cast<double>(weight);
    }
  });
  sums[0] = all;
}

case_summary summary_of(const table& summed, const impls::w_sequence& cases) {
  case_summary result;
  result.rows = cases.size();
  for (const auto& column : summed.columns) {
    if (is_attribute(*column)) result.unknown_cells += unknown_cells(*column, cases);
  }
  result.weight = total_weight(cases);
  result.class_weights = class_weights(summed.class_column(), cases);
  return result;
}

}  // namespace arbor::tree
