#include "arbor/csv/csv_row_builder.h"

#include <csv.h>
#include <fmt/format.h>

#include <cstdint>

#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

// LF, CRLF and a lone CR each end a line.
unsigned long long newlines(std::string_view text) {
  unsigned long long count = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '\n' || (text[i] == '\r' && text.substr(i + 1, 1) != "\n")) ++count;
  }
  return count;
}

// The highest bit of each of eight characters that is a comma or comes before it, as quotes, CR, LF
// and NUL do: the bit 0x80 survives the subtraction in a byte that is not below the other one, and
// no byte borrows from the next.
std::uint64_t commas_and_below(std::uint64_t characters) {
  constexpr std::uint64_t each = 0x0101010101010101U;
  return ~(((characters | 0x80 * each) - (',' + 1) * each) | characters) & 0x80 * each;
}

}  // namespace

unsigned long long csv_row::line_of(std::size_t cell) const {
  const std::size_t row_begin = cells[0].begin;
  return first_line +
         newlines(std::string_view(characters + row_begin, cells[cell].begin - row_begin));
}

void csv_row_builder::add_cell(const char* text, std::size_t length) {
  if (row.cells.empty()) begin_row();
  const std::string_view cell(text == nullptr ? "" : text, length);
  if (cell.find('\0') != std::string_view::npos) {
    fail("a zero byte in the text; a table is text in UTF-8 or another encoding that has none");
  }
  row.cells.push_back({reported.size(), reported.size() + length, text == nullptr});
  reported.append(cell);
  reported += '\0';
  line += newlines(cell);
  after_cr = false;
}

void csv_row_builder::end_line(int terminator) {
  ++ends;
  const bool second_half = terminator == CSV_LF && after_cr;
  after_cr = terminator == CSV_CR;
  if (second_half) return;
  reported.append(readable_behind_cell, '\0');
  finish_row(reported.data());
  reported.clear();
}

// NOLINTNEXTLINE(readability-function-cognitive-complexity): one loop, whose parts would share all of its state
std::size_t csv_row_builder::take_plain_lines(char* bytes, std::size_t count) {
  std::size_t line_begin = 0;
  std::size_t cell_begin = 0;
  for (std::size_t at = 0; at < count; at += 8) {
    for (std::uint64_t marks = commas_and_below(eight_characters(bytes + at)); marks != 0;
         marks &= marks - 1) {
      const std::size_t i = at + static_cast<std::size_t>(__builtin_ctzll(marks)) / 8;
      const char mark = bytes[i];
      const bool ends_line = mark == '\n';
      if (ends_line || mark == ',') {
        if (i >= count) break;
        const std::size_t cell_end =
            ends_line && i > cell_begin && bytes[i - 1] == '\r' ? i - 1 : i;
        const bool empty = cell_end == cell_begin;
        if (!(ends_line && empty && row.cells.empty()))
          row.cells.push_back({cell_begin, cell_end, empty});
        cell_begin = i + 1;
        if (!ends_line) continue;
        if (!row.cells.empty()) begin_row();
        for (const auto& cell : row.cells) bytes[cell.end] = '\0';
        finish_row(bytes);
        line_begin = cell_begin;
      } else if (mark == '"' || mark == '\0' || (mark == '\r' && bytes[i + 1] != '\n')) {
        row.cells.clear();
        return line_begin;
      }
    }
  }
  row.cells.clear();
  return line_begin;
}

void csv_row_builder::begin_row() {
  row.first_line = line;
  if (empty_line == 0) return;
  line = empty_line;
  fail("an empty line; only the end of a table may have some");
}

void csv_row_builder::finish_row(const char* characters) {
  if (row.cells.empty()) {
    if (empty_line == 0) empty_line = line;
  } else {
    row.characters = characters;
    use(row);
    row.cells.clear();
  }
  ++line;
}

void csv_row_builder::fail(const std::string& what) const {
  throw table_error(fmt::format("{}:{}: {}", name, line, what));
}

}  // namespace arbor::tree
