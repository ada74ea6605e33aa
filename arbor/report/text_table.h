// Rows of cells as lines whose columns are aligned.
//
//   aligned({{"attribute", "gain"}, {"outlook", "0.25"}}, "lr")
//
// Widths are counted in characters of UTF-8.
#ifndef ARBOR_REPORT_TEXT_TABLE_H
#define ARBOR_REPORT_TEXT_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

namespace arbor::tree {

// A line for each row, without spaces at its end. `sides` has a letter for each column: its cells
// are flush left ('l') or right ('r'). No row may have more cells than that.
std::string aligned(const std::vector<std::vector<std::string>>& rows, const std::string& sides);

// How many characters a line has. Those of East Asia take two columns of a terminal but count as
// one.
std::size_t display_width(const std::string& line);

// A text of at most `most` (5 or more) characters as it is; of a longer one the beginning and the
// end, with "..." between them. Names that differ often do so at one of their ends.
std::string shortened(const std::string& text, std::size_t most);

}  // namespace arbor::tree

#endif
