// Writes a text as a cell of comma-separated values.
//
//   csv_cell("red, blue")  // "red, blue", in quotes
#ifndef ARBOR_CSV_CSV_CELL_H
#define ARBOR_CSV_CSV_CELL_H

#include <string>
#include <string_view>

namespace arbor::tree {

// The text in quotes, with the quotes in it doubled, if it has a comma, a quote or a newline; else
// as it is (RFC 4180).
std::string csv_cell(const std::string& text);
// Appends the same.
void append_csv_cell(std::string_view text, std::string& to);

}  // namespace arbor::tree

#endif
