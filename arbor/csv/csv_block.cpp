#include "arbor/csv/csv_block.h"

#include <algorithm>
#include <utility>

#include "arbor/csv/line_ends.h"

namespace arbor::tree {

unsigned long long csv_row::line_of(std::size_t cell) const {
  return first_line + line_ends(text(0), bounds[cell] - bounds[0]);
}

bool csv_row::is_in_quotes(std::size_t cell) const {
  const std::vector<std::uint32_t>& quoted = block->quoted_empty_cells;
  return std::binary_search(quoted.begin(), quoted.end(), bounds[cell]);
}

void csv_block::drop_cells_after(std::size_t cells) {
  const auto most = static_cast<std::uint32_t>(cells);
  for (row_start& start : starts) start.cells = std::min(start.cells, most);
}

void csv_block::refuse(std::size_t number, std::exception_ptr what) {
  place = number;
  starts.clear();
  error = std::move(what);
}

}  // namespace arbor::tree
