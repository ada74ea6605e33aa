#include "arbor/report/text_table.h"

#include <algorithm>

namespace arbor::tree {

namespace {

// All bytes but those that continue a character of UTF-8.
bool begins_character(char c) {
  return (static_cast<unsigned char>(c) & 0xC0U) != 0x80;
}

}  // namespace

std::size_t display_width(const std::string& line) {
  return static_cast<std::size_t>(std::count_if(line.begin(), line.end(), begins_character));
}

std::string shortened(const std::string& text, std::size_t most) {
  const std::string ellipsis = "...";
  std::vector<std::size_t> characters;  // where each begins
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (begins_character(text[i])) characters.push_back(i);
  }
  if (characters.size() <= most) return text;
  const std::size_t at_end = (most - ellipsis.size()) / 2;
  const std::size_t at_begin = most - ellipsis.size() - at_end;
  return text.substr(0, characters[at_begin]) + ellipsis +
         text.substr(characters[characters.size() - at_end]);
}

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
