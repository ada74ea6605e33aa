// Divides plain lines of a CSV file into cells at each comma. A plain line has no quotes and no
// zero bytes, and a CR only before the LF. Internal to the reader.
#ifndef ARBOR_CSV_PLAIN_LINES_H
#define ARBOR_CSV_PLAIN_LINES_H

#include "arbor/csv/csv_row.h"
#include "arbor/csv/row_delivery.h"

namespace arbor::tree {

class plain_lines {
 public:
  explicit plain_lines(row_delivery& to) : rows(to) {}

  // Takes whole lines from the beginning of `bytes`, which is the beginning of a line. Returns how
  // many of the `count` bytes they are; the next line is not plain or is incomplete. Writes a NUL
  // after each cell. Eight bytes more than `count` must be readable.
  std::size_t take(char* bytes, std::size_t count);

 private:
  void end_line(char* bytes, std::size_t cell_begin, std::size_t newline);

  row_delivery& rows;
  csv_row row;
};

}  // namespace arbor::tree

#endif
