// Divides lines of a CSV file that may have quotes in them into cells, with the parser of libcsv.
// Internal to row_division.
#ifndef ARBOR_CSV_QUOTED_LINES_H
#define ARBOR_CSV_QUOTED_LINES_H

#include <csv.h>

#include <cstddef>
#include <exception>

#include "arbor/csv/row_division.h"

namespace arbor::tree {

// Throws table_error, naming the line, for a quote that is misplaced or never closed and for a zero
// byte.
class quoted_lines {
 public:
  explicit quoted_lines(row_division& to);
  ~quoted_lines() { csv_free(&parser); }
  quoted_lines(const quoted_lines&) = delete;
  quoted_lines& operator=(const quoted_lines&) = delete;

  // Takes the next bytes, wherever in a line they begin and end. Cells may be written over bytes
  // that have been taken.
  void take(const char* bytes, std::size_t count);

  // Takes an LF. Returns whether it has ended a line; within quotes it is part of a cell.
  bool take_newline();

  // Call at the end of the block.
  void finish();

 private:
  // The functions that the parser calls, with this object as `lines`.
  static void on_cell(void* text, std::size_t length, void* lines);
  static void on_line_end(int terminator, void* lines);

  void end_line(int terminator);
  template <class Step>
  void run(Step step) noexcept;
  void check(bool done, const char* complaint);

  row_division& rows;
  ::csv_parser parser{};
  bool line_ended = false;    // since this was last set to false
  bool after_cr = false;      // whether a line has ended in a CR, to which an LF may belong
  std::exception_ptr thrown;  // while the parser ran
};

}  // namespace arbor::tree

#endif
