#include "arbor/report/text_table.h"

#include <algorithm>

#include "arbor/csv/shown_text.h"

namespace arbor::tree {

std::string aligned(const std::vector<std::vector<std::string>>& rows, const std::string& sides) {
  std::vector<std::size_t> widths(sides.size(), 0);
  for (const auto& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i)
      widths[i] = std::max(widths[i], display_width(row[i]));
  }
  std::string report;
  for (const auto& row : rows) {
    std::string line;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const std::string padding(widths[i] - display_width(row[i]), ' ');
      line += (i == 0 ? "" : "  ") + (sides[i] == 'l' ? row[i] + padding : padding + row[i]);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    report += line + '\n';
  }
  return report;
}

}  // namespace arbor::tree
