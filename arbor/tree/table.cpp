#include "arbor/tree/table.h"

#include <algorithm>
#include <limits>

#include "arbor/tree/domain_text.h"
#include "arbor/tree/shortest_text.h"

namespace arbor::tree {

std::string value_text(const impls::column& column, unsigned int code) {
  const bool is_text = column.get_o_set()->get_datatype() == "string";
  return is_text ? to_cell_text(column.get_value(code)) : shortest_value(column, code);
}

bool code_of_text(const impls::column& column, const char* text, unsigned int& code) {
  impls::o_set& domain = *column.get_o_set();
  if (domain.get_datatype() == "string") return domain.get_order(to_domain_text(text).c_str(), code);
  return domain.get_order(text, code);
}

bool is_attribute(const impls::column& column) {
  return !column.is_class() && !column.is_weights();
}

std::size_t unknown_cells(const impls::column& column, const impls::w_sequence& cases) {
  // A column without known values keeps no rows; the base tells the unknown code for any.
  const auto unknown = [&](const auto& weighted) { return column.get_row_index(weighted.first) == 0; };
  return static_cast<std::size_t>(std::count_if(cases.begin(), cases.end(), unknown));
}

strata::util::pair<unsigned int, unsigned int> occurring_range(const impls::column& column,
                                                               const impls::w_sequence& cases) {
  unsigned int least = std::numeric_limits<unsigned int>::max();
  unsigned int greatest = 0;
  for (const auto& weighted : cases) {
    const unsigned int code = column.get_row_index(weighted.first);
    if (code == 0) continue;
    least = std::min(least, code);
    greatest = std::max(greatest, code);
  }
  if (greatest == 0) return {0, 0};
  return {least, greatest + 1};
}

float total_weight(const impls::w_sequence& cases) {
  double sum = 0;
  for (const auto& weighted : cases) sum += static_cast<double>(weighted.second);
  return static_cast<float>(sum);
}

std::vector<float> class_weights(const impls::column& classes, const impls::w_sequence& cases) {
  std::vector<double> sums(classes.get_distinct(), 0.0);
  for (const auto& [row, weight] : cases) sums[classes.get_row_index(row)] += static_cast<double>(weight);
  return {sums.begin() + 1, sums.end()};
}

}  // namespace arbor::tree
