#include "arbor/csv/csv_block.h"

#include <algorithm>

#include "arbor/csv/line_ends.h"

namespace arbor::tree {

unsigned long long csv_row::line_of(std::size_t cell) const {
  return first_line + line_ends(text(0), bounds[cell] - bounds[0]);
}

bool csv_row::is_in_quotes(std::size_t cell) const {
  const std::vector<std::uint32_t>& quoted = block->quoted_empty_cells;
  return std::binary_search(quoted.begin(), quoted.end(), bounds[cell]);
}

}  // namespace arbor::tree
