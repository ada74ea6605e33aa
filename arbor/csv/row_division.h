// Divides the bytes of a block of a CSV file into rows of cells (RFC 4180, with any delimiter).
#ifndef ARBOR_CSV_ROW_DIVISION_H
#define ARBOR_CSV_ROW_DIVISION_H

#include <string>

#include "arbor/csv/csv_block.h"

namespace arbor::tree {

class quoted_lines;

// Divides a block that a block_reader has filled.
//
// Quoted cells may contain delimiters, quotes and newlines; rows end in LF, CRLF or CR; lines that
// are empty, or have nothing but blanks that are no part of a cell, are skipped. The block ends
// with a table_error at a quote inside an unquoted cell or after a quoted one, a quote that is
// never closed, and a zero byte. Throws std::bad_alloc.
void divide_rows(csv_block& block);

// Internal: what both ways to divide a line into cells share. They count the lines here.
class row_division {
 public:
  explicit row_division(csv_block& of) : block(of) {}

  void run();

  const csv_form& form() const { return block.form; }

  // For lines with quotes, cell by cell. The cells of a row take the place of the bytes that they
  // were read from, which are never fewer. `text` is null for an empty cell without quotes.
  void add_cell(const char* text, std::size_t length);
  // The line ends. Without cells since the last one it is empty.
  void end_line();

  // Throws table_error, naming the file and the line.
  [[noreturn]] void fail(const std::string& what) const;

 private:
  void divide();
  std::size_t take_plain_lines(std::size_t at);
  std::size_t take_quoted_lines(std::size_t at, quoted_lines& parser);
  std::uint32_t* room_for_bounds(std::size_t count);
  void begin_row();
  void end_row(std::size_t cells, bool plain);
  void trim_cells(std::size_t cells);
  void end_empty_line();
  unsigned long long line() const { return block.first_line + lines; }

  csv_block& block;
  std::size_t lines = 0;        // that have ended
  std::size_t row_line = 0;     // how many had when the row began
  std::size_t empty_lines = 0;  // since the last row
  std::size_t row_bound = 0;    // the first of the row
  std::size_t bounds = 0;       // of the rows so far and this one
  std::size_t written = 0;      // where the next cell of a line with quotes is put
};

}  // namespace arbor::tree

#endif
