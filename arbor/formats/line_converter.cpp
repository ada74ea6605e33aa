#include "arbor/formats/line_converter.h"

#include <algorithm>
#include <cstring>

#include "arbor/csv/csv_cell.h"
#include "arbor/formats/character_set.h"

namespace arbor::tree {

namespace {

constexpr std::size_t converted_at_once = 1U << 14U;

constexpr character_set special_in_cells(",\"\r\n");
constexpr character_set blanks(" \t");

bool is_question_mark(const std::string& text) {
  return text.size() == 1 && text.front() == '?';
}

bool needs_quotes(const written_cell& cell) {
  const std::string& text = cell.text;
  for (const char c : text) {
    if (special_in_cells.has(c)) return true;
  }
  return cell.is_literal && (text.empty() || is_question_mark(text) || blanks.has(text.front()) ||
                             blanks.has(text.back()));
}

}  // namespace

void append_converted(const written_cell& cell, std::string& to) {
  if (needs_quotes(cell)) {
    append_quoted_cell(cell.text, to);
  } else if (cell.is_literal || !is_question_mark(cell.text)) {
    to += cell.text;
  }
}

std::size_t line_converter::read(char* buffer, std::size_t size) {
  std::size_t count = 0;
  while (count < size) {
    if (given == converted.size()) {
      converted.clear();
      given = 0;
      for (std::string_view line; converted.size() < converted_at_once && lines.next(line);) {
        convert(line, converted);
        converted += '\n';
      }
      if (converted.empty()) break;
    }
    const std::size_t more = std::min(size - count, converted.size() - given);
    std::memcpy(buffer + count, converted.data() + given, more);
    count += more;
    given += more;
  }
  return count;
}

}  // namespace arbor::tree
