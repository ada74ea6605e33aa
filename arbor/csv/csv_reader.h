// Reads comma-separated values (RFC 4180) row by row.
//
//   input_file file("golf.csv");
//   read_csv(file, [&](const csv_row& row) { use(row.text(0), row.line()); });
#ifndef ARBOR_CSV_CSV_READER_H
#define ARBOR_CSV_CSV_READER_H

#include <functional>
#include <string>
#include <vector>

#include "arbor/csv/cell_text.h"
#include "arbor/csv/input_file.h"

namespace arbor::tree {

// The cells of one row. Valid during the call that it is handed to.
class csv_row {
 public:
  std::size_t size() const { return cells.size(); }
  // The text of a cell, NUL-terminated, without the quotes around it and with all its blanks.
  const char* text(std::size_t cell) const { return characters + cells[cell].begin; }
  cell_text cell(std::size_t cell) const {
    return {text(cell), cells[cell].end - cells[cell].begin};
  }
  // Whether nothing at all stands between the separators, not even quotes.
  bool is_empty(std::size_t cell) const { return cells[cell].empty; }
  // The line of the file, from 1, that the row begins on, and that a cell of it begins on.
  unsigned long long line() const { return first_line; }
  unsigned long long line_of(std::size_t cell) const;

 private:
  friend class csv_row_builder;

  struct extent {
    std::size_t begin;
    std::size_t end;
    bool empty;
  };

  const char* characters =
      nullptr;  // the cells, one character between two, a NUL when the row is complete
  std::vector<extent> cells;
  unsigned long long first_line = 1;
};

// Hands every row of `file`, from where it stands to its end, to `use`, the header row like any
// other.
//
// Separators, quotes and newlines may stand in quoted cells; rows end in LF or CRLF; a UTF-8 byte
// order mark at the beginning is skipped, and so are empty lines at the end. Throws table_error for
// a quote inside an unquoted cell or behind a quoted one, a quote that is never closed, a zero
// byte, and an empty line between rows. What `use` throws passes.
void read_csv(input_file& file, const std::function<void(const csv_row&)>& use);

}  // namespace arbor::tree

#endif
