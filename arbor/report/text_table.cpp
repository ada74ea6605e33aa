#include "arbor/report/text_table.h"

#include <algorithm>

namespace arbor::tree {

namespace {

// In characters: the bytes that do not continue a character of UTF-8.
std::size_t display_width(const std::string& text) {
  const auto begins_character = [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
  };
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), begins_character));
}

}  // namespace

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
