// Rows of cells as lines whose columns are aligned.
//
//   write_aligned(out, "lr", 2, [](std::size_t row) -> std::vector<std::string> {
//     return row == 0 ? {"attribute", "gain"} : {"outlook", "0.25"};
//   });
//
// Cells are printable; see shown_text.h, which also says how wide they are.
#ifndef ARBOR_REPORT_TEXT_TABLE_H
#define ARBOR_REPORT_TEXT_TABLE_H

#include <cstddef>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace arbor::tree {

// Writes a line for each row, without spaces at its end. `sides` has a letter for each column: its
// cells are flush left ('l') or right ('r'). `row` returns the cells of a row, no more than that;
// it is called twice for each, so that no table is kept in memory.
void write_aligned(std::ostream& out, const std::string& sides, std::size_t rows,
                   const std::function<std::vector<std::string>(std::size_t)>& row);

// The lines of a table of few rows.
std::string aligned(const std::vector<std::vector<std::string>>& rows, const std::string& sides);

}  // namespace arbor::tree

#endif
