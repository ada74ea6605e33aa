// Writes a text as a cell of comma-separated values.
//
//   csv_cell("red, blue")  // "red, blue", in quotes
#ifndef ARBOR_CSV_CSV_CELL_H
#define ARBOR_CSV_CSV_CELL_H

#include <string>
#include <string_view>

#include "arbor/csv/csv_block.h"

namespace arbor::tree {

// The text in quotes, with the quotes in it doubled, if it has a delimiter, a quote or a newline,
// or begins or ends with a blank; else as it is (RFC 4180).
std::string csv_cell(const std::string& text, char delimiter = ',');

// Appends the text in quotes, with the quotes in it doubled.
void append_quoted_cell(std::string_view text, std::string& to);

// Appends the cells of a row, as they stand in the file, with a delimiter after each. Quotes and
// blanks that a cell does not need are left out, but for the quotes of an empty one.
void append_csv_cells(const csv_row& row, std::string& to);
// The same for one cell.
void append_csv_cell(const csv_row& row, std::size_t cell, std::string& to);

}  // namespace arbor::tree

#endif
