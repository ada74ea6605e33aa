// Hands the rows of a CSV file to their user, counts the lines, and refuses empty lines between
// rows. Internal to the reader: both ways to divide a line into cells end each line here.
#ifndef ARBOR_CSV_ROW_DELIVERY_H
#define ARBOR_CSV_ROW_DELIVERY_H

#include <functional>
#include <string>

#include "arbor/csv/csv_row.h"

namespace arbor::tree {

class row_delivery {
 public:
  // Keeps both references, which must outlive this object. `file_name` is how messages name the
  // file.
  row_delivery(const std::string& file_name, const std::function<void(const csv_row&)>& use)
      : name(file_name), use_row(use) {}

  // A row begins on the line that is being read. Throws if empty lines came before.
  void begin_row();
  // Counts lines that end within a cell.
  void pass_lines(unsigned long long count) { line += count; }
  // The line ends. `row` has the cells of the row that has begun, or none if the line is empty; it
  // is finished with these characters, handed over and cleared.
  void end_line(csv_row& row, char* characters);

  // Throws table_error, naming the file and the line.
  [[noreturn]] void fail(const std::string& what) const;

 private:
  const std::string& name;
  const std::function<void(const csv_row&)>& use_row;
  unsigned long long line = 1;        // that is being read
  unsigned long long row_line = 1;    // on which the row began
  unsigned long long empty_line = 0;  // the first of those since the last row
};

}  // namespace arbor::tree

#endif
