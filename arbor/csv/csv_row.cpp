#include "arbor/csv/csv_row.h"

namespace arbor::tree {

unsigned long long csv_row::line_of(std::size_t cell) const {
  return first_line + line_ends(text(0), cells[cell].begin - cells[0].begin);
}

void csv_row::finish(char* of_cells, unsigned long long line) {
  for (const extent& cell : cells) of_cells[cell.end] = '\0';
  characters = of_cells;
  first_line = line;
}

unsigned long long line_ends(const char* text, std::size_t length) {
  unsigned long long count = 0;
  for (std::size_t i = 0; i < length; ++i) {
    const bool is_crlf = text[i] == '\r' && i + 1 < length && text[i + 1] == '\n';
    if (text[i] == '\n' || (text[i] == '\r' && !is_crlf)) ++count;
  }
  return count;
}

}  // namespace arbor::tree
