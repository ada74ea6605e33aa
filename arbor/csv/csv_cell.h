// Writes a text as a cell of comma-separated values.
//
//   csv_cell("red, blue")  // "red, blue", in quotes
#ifndef ARBOR_CSV_CSV_CELL_H
#define ARBOR_CSV_CSV_CELL_H

#include <string>
#include <string_view>

#include "arbor/csv/csv_block.h"

namespace arbor::tree {

// The text in quotes, with the quotes in it doubled, if it has a comma, a quote or a newline; else
// as it is (RFC 4180).
std::string csv_cell(const std::string& text);

// Appends the text in quotes, with the quotes in it doubled.
void append_quoted_cell(std::string_view text, std::string& to);

// Appends the cells of a row, as they stand in the file, with a comma after each. Quotes that a
// cell does not need are left out, but for those of an empty one.
void append_csv_cells(const csv_row& row, std::string& to);

}  // namespace arbor::tree

#endif
