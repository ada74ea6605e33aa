#include "arbor/report/text_table.h"

#include <algorithm>

#include "arbor/csv/shown_text.h"

namespace arbor::tree {

namespace {

using cells = std::vector<std::string>;

std::string line_of(const cells& row, const std::vector<std::size_t>& widths,
                    const std::string& sides) {
  std::string line;
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::string padding(widths[i] - display_width(row[i]), ' ');
    line += (i == 0 ? "" : "  ") + (sides[i] == 'l' ? row[i] + padding : padding + row[i]);
  }
  line.erase(line.find_last_not_of(' ') + 1);
  return line + '\n';
}

// Calls use(line) for each row.
template <class Row, class Use>
void for_each_line(const std::string& sides, std::size_t rows, Row row, Use use) {
  std::vector<std::size_t> widths(sides.size(), 0);
  for (std::size_t r = 0; r < rows; ++r) {
    const cells& of_row = row(r);
    for (std::size_t i = 0; i < of_row.size(); ++i)
      widths[i] = std::max(widths[i], display_width(of_row[i]));
  }
  for (std::size_t r = 0; r < rows; ++r) use(line_of(row(r), widths, sides));
}

}  // namespace

void write_aligned(std::ostream& out, const std::string& sides, std::size_t rows,
                   const std::function<cells(std::size_t)>& row) {
  for_each_line(sides, rows, row, [&](const std::string& line) { out << line; });
}

std::string aligned(const std::vector<cells>& rows, const std::string& sides) {
  std::string report;
  for_each_line(
      sides, rows.size(), [&](std::size_t r) { return rows[r]; },
      [&](const std::string& line) { report += line; });
  return report;
}

}  // namespace arbor::tree
