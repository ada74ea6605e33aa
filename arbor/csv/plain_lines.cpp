#include "arbor/csv/plain_lines.h"

#include <cstdint>

namespace arbor::tree {

namespace {

// The highest bit of each of eight characters that is a comma or comes before it, as quotes, CR, LF
// and NUL do: the bit 0x80 survives the subtraction in a byte that is not below the other one, and
// no byte borrows from the next.
std::uint64_t commas_and_below(std::uint64_t characters) {
  constexpr std::uint64_t each = 0x0101010101010101U;
  return ~(((characters | 0x80 * each) - (',' + 1) * each) | characters) & 0x80 * each;
}

std::size_t first_of(std::uint64_t marks) {
  return static_cast<std::size_t>(__builtin_ctzll(marks)) / 8;
}

// Whether the line is not plain because of this character.
bool is_special(const char* c) {
  return *c == '"' || *c == '\0' || (*c == '\r' && c[1] != '\n');
}

}  // namespace

std::size_t plain_lines::take(char* bytes, std::size_t count) {
  std::size_t line_begin = 0;
  std::size_t cell_begin = 0;
  row.clear();
  for (std::size_t at = 0; at < count; at += 8) {
    std::uint64_t marks = commas_and_below(eight_characters(bytes + at));
    for (; marks != 0; marks &= marks - 1) {
      const std::size_t i = at + first_of(marks);
      if (i >= count) return line_begin;
      if (bytes[i] == ',') {
        row.add_cell(cell_begin, i, i == cell_begin);
        cell_begin = i + 1;
      } else if (bytes[i] == '\n') {
        end_line(bytes, cell_begin, i);
        cell_begin = line_begin = i + 1;
      } else if (is_special(bytes + i)) {
        return line_begin;
      }
    }
  }
  return line_begin;
}

void plain_lines::end_line(char* bytes, std::size_t cell_begin, std::size_t newline) {
  const bool is_crlf = newline > cell_begin && bytes[newline - 1] == '\r';
  const std::size_t cell_end = is_crlf ? newline - 1 : newline;
  const bool empty = cell_end == cell_begin;
  const bool is_empty_line = empty && row.size() == 0;
  if (!is_empty_line) {
    row.add_cell(cell_begin, cell_end, empty);
    rows.begin_row();
  }
  rows.end_line(row, bytes);
}

}  // namespace arbor::tree
