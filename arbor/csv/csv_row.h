// A row of a CSV file.
//
//   for (std::size_t i = 0; i < row.size(); ++i) use(row.text(i), row.line_of(i));
#ifndef ARBOR_CSV_CSV_ROW_H
#define ARBOR_CSV_CSV_ROW_H

#include <cstddef>
#include <vector>

#include "arbor/csv/cell_text.h"

namespace arbor::tree {

// Refers to characters that the reader owns, and is valid only during the call that receives it.
class csv_row {
 public:
  // How many cells there are; those of a finished row are numbered from 0.
  std::size_t size() const { return cells.size(); }
  // The text of a cell, NUL-terminated, without the quotes around it and with all its blanks.
  const char* text(std::size_t cell) const { return characters + cells[cell].begin; }
  cell_text cell(std::size_t cell) const {
    return {text(cell), cells[cell].end - cells[cell].begin};
  }
  // Whether there is nothing at all between the separators, not even quotes.
  bool is_empty(std::size_t cell) const { return cells[cell].empty; }
  // The line of the file, from 1, on which the row begins, and on which a cell of it begins.
  unsigned long long line() const { return first_line; }
  unsigned long long line_of(std::size_t cell) const;

  // For the reader, which calls these in this order. `begin` and `end` are the bounds of the next
  // cell in the characters that `finish` is given; `empty` is what is_empty returns. At least one
  // character separates two cells.
  void add_cell(std::size_t begin, std::size_t end, bool empty) {
    cells.push_back({begin, end, empty});
  }
  // Writes a NUL after each cell. `line` is the one that the row begins on.
  void finish(char* of_cells, unsigned long long line);
  void clear() { cells.clear(); }

 private:
  struct extent {
    std::size_t begin;
    std::size_t end;
    bool empty;
  };

  const char* characters = nullptr;
  std::vector<extent> cells;
  unsigned long long first_line = 1;
};

// How many lines end in a text: LF, CRLF and a lone CR each end one.
unsigned long long line_ends(const char* text, std::size_t length);

}  // namespace arbor::tree

#endif
