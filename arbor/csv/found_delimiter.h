// Finds the character between the cells of a CSV file.
//
//   found_delimiter("a;b\n1,5;2\n", {})   // ';'
#ifndef ARBOR_CSV_FOUND_DELIMITER_H
#define ARBOR_CSV_FOUND_DELIMITER_H

#include <optional>
#include <string>
#include <string_view>

#include "arbor/csv/input_options.h"

namespace arbor::tree {

// The one of comma, semicolon, tab and bar that divides the first lines into rows of equally many
// cells, two or more; of several, the one with the most cells. Only if there is none, the space.
// The first row may have one cell more or fewer than the others if it has the names. Delimiters in
// quotes do not count. Without any such character it is the most frequent one of the first row, or
// the comma.
//
// `beginning` is that of a file. Its last row may be cut off, and counts only if it is alone.
char found_delimiter(std::string_view beginning, const input_options& options);

// The character X of a first line "sep=X", with which spreadsheets name the delimiter; none if
// there is no such line.
std::optional<char> declared_delimiter(std::string_view beginning);

// "commas", "tabs" and so on; a character without such a name in quotes.
std::string delimiter_name(char delimiter);

}  // namespace arbor::tree

#endif
