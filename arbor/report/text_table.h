// Rows of cells as lines whose columns are aligned.
//
//   aligned({{"attribute", "gain"}, {"outlook", "0.25"}}, "lr")
//
// Cells are printable; see shown_text.h, which also says how wide they are.
#ifndef ARBOR_REPORT_TEXT_TABLE_H
#define ARBOR_REPORT_TEXT_TABLE_H

#include <cstddef>
#include <string>
#include <vector>

namespace arbor::tree {

// A line for each row, without spaces at its end. `sides` has a letter for each column: its cells
// are flush left ('l') or right ('r'). No row may have more cells than that.
std::string aligned(const std::vector<std::vector<std::string>>& rows, const std::string& sides);

}  // namespace arbor::tree

#endif
