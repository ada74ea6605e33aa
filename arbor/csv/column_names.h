// The names of the columns of a CSV file, and in which of the usual shapes its rows come.
//
//   const column_names found = names_of(first_block, true);
#ifndef ARBOR_CSV_COLUMN_NAMES_H
#define ARBOR_CSV_COLUMN_NAMES_H

#include <string>
#include <vector>

#include "arbor/csv/csv_block.h"
#include "arbor/csv/input_remark.h"

namespace arbor::tree {

struct column_names {
  std::vector<std::string> names;
  // Whether the first column has the numbers or names of the rows: its own name is missing, or the
  // first row is one cell short, as some programs write tables. It gets the name "row".
  bool has_row_numbers = false;
  // Whether a delimiter stands behind the last cell of each row, or of the first row alone.
  bool has_final_delimiters = false;
  std::vector<input_remark> remarks;
};

// `first` has the first rows of a file, at least one. With `has_names` its first row names the
// columns, and all columns but the first have the name column_ and their number if they have none.
column_names names_of(const csv_block& first, bool has_names);

}  // namespace arbor::tree

#endif
