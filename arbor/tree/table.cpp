#include "arbor/tree/table.h"

#include "arbor/tree/domain_text.h"

namespace arbor::tree {

std::string value_text(const impls::column& column, unsigned int code) {
  const std::string text = column.get_value(code);
  return column.get_o_set()->get_datatype() == "string" ? to_cell_text(text) : text;
}

bool is_attribute(const impls::column& column) {
  return !column.is_class() && !column.is_weights();
}

std::size_t unknown_cells(const impls::column& column, std::size_t rows) {
  if (column.get_o_set()->size_of_known() == 0) return rows;
  std::size_t count = 0;
  for (unsigned int row = 0; row < column.size(); ++row) count += column.get_row_index(row) == 0 ? 1 : 0;
  return count;
}

}  // namespace arbor::tree
