#include "arbor/csv/csv_cell.h"

#include <csv.h>

namespace arbor::tree {

namespace {

bool needs_quotes(std::string_view text, char delimiter) {
  constexpr std::string_view blanks = " \t";
  if (text.empty()) return false;
  return blanks.find(text.front()) != blanks.npos || blanks.find(text.back()) != blanks.npos ||
         text.find_first_of("\"\r\n") != text.npos || text.find(delimiter) != text.npos;
}

void append_cell(std::string_view text, char delimiter, std::string& to) {
  if (!needs_quotes(text, delimiter)) {
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

std::string csv_cell(const std::string& text, char delimiter) {
  std::string cell;
  append_cell(text, delimiter, cell);
  return cell;
}

void append_csv_cells(const csv_row& row, std::string& to) {
  const char delimiter = row.form().delimiter;
  if (row.is_plain()) {
    const char* const begin = row.text(0);
    const cell_text last = row.cell(row.size() - 1);
    const std::size_t before = to.size();
    to.append(begin, last.begin + last.length + 1);
    for (std::size_t i = 0; i < row.size(); ++i) {
      const cell_text text = row.cell(i);
      to[before + static_cast<std::size_t>(text.begin + text.length - begin)] = delimiter;
    }
    return;
  }
  for (std::size_t i = 0; i < row.size(); ++i) append_csv_cell(row, i, to);
}

void append_csv_cell(const csv_row& row, std::size_t cell, std::string& to) {
  const char delimiter = row.form().delimiter;
  const cell_text text = row.cell(cell);
  if (text.length == 0 && !row.is_empty(cell)) to += "\"\"";
  append_cell({text.begin, text.length}, delimiter, to);
  to += delimiter;
}

}  // namespace arbor::tree
