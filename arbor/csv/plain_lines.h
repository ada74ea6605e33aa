// Takes plain lines of a CSV file apart: those without quotes and zero bytes, in which a CR stands
// only before the LF. Their cells are simply what stands between commas. Internal to the reader.
#ifndef ARBOR_CSV_PLAIN_LINES_H
#define ARBOR_CSV_PLAIN_LINES_H

#include "arbor/csv/csv_row.h"
#include "arbor/csv/row_delivery.h"

namespace arbor::tree {

class plain_lines {
 public:
  explicit plain_lines(row_delivery& to) : rows(to) {}

  // Takes whole lines from the beginning of `bytes`, which is the beginning of a line. Returns how
  // many of the `count` bytes they are; the line that comes then is not plain or is incomplete.
  // Writes NULs behind cells. Eight bytes more than `count` must be readable.
  std::size_t take(char* bytes, std::size_t count);

 private:
  void end_line(char* bytes, std::size_t cell_begin, std::size_t newline);

  row_delivery& rows;
  csv_row row;
};

}  // namespace arbor::tree

#endif
