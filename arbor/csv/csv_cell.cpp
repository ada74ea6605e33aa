#include "arbor/csv/csv_cell.h"

#include <csv.h>

namespace arbor::tree {

namespace {

void append_cell(std::string_view text, std::string& to) {
  if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
    to += text;
  } else {
    append_quoted_cell(text, to);
  }
}

}  // namespace

void append_quoted_cell(std::string_view text, std::string& to) {
  const std::size_t begin = to.size();
  to.resize(begin + 2 * text.size() + 2);
  to.resize(begin + csv_write(&to[begin], to.size() - begin, text.data(), text.size()));
}

std::string csv_cell(const std::string& text) {
  std::string cell;
  append_cell(text, cell);
  return cell;
}

void append_csv_cells(const csv_row& row, std::string& to) {
  if (row.is_plain()) {
    const char* const begin = row.text(0);
    const cell_text last = row.cell(row.size() - 1);
    const std::size_t before = to.size();
    to.append(begin, last.begin + last.length + 1);
    for (std::size_t i = 0; i < row.size(); ++i) {
      const cell_text text = row.cell(i);
      to[before + static_cast<std::size_t>(text.begin + text.length - begin)] = ',';
    }
    return;
  }
  for (std::size_t i = 0; i < row.size(); ++i) {
    const cell_text text = row.cell(i);
    if (text.length == 0 && !row.is_empty(i)) to += "\"\"";
    append_cell({text.begin, text.length}, to);
    to += ',';
  }
}

}  // namespace arbor::tree
