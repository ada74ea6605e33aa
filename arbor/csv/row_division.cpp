// Two ways take turns. The parser of libcsv knows quotes; but it looks at each byte in turn, calls
// a function for it, and would take most of the time of loading. Plain lines, which most tables
// consist of, are therefore divided 64 bytes at a time. The parser gets a line that is not
// plain, and the lines after it until one of them ends outside of quotes: then a row begins, and
// either way can go on.

#include "arbor/csv/row_division.h"

#include <fmt/format.h>

#include <cstring>
#include <optional>
#include <utility>

#include "arbor/csv/character_marks.h"
#include "arbor/csv/line_ends.h"
#include "arbor/csv/quoted_lines.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

void row_division::run() {
  if (block.error) return;
  try {
    divide();
  } catch (const table_error&) {
    block.error = std::current_exception();
  }
}

void row_division::divide() {
  std::optional<quoted_lines> quoted;
  std::size_t at = take_plain_lines(0);
  while (at < block.length) {
    if (!quoted) quoted.emplace(*this);
    at = take_plain_lines(take_quoted_lines(at, *quoted));
  }
  if (quoted) quoted->finish();
}

// Returns the beginning of the next row, or the end.
std::size_t row_division::take_quoted_lines(std::size_t at, quoted_lines& parser) {
  const char* const bytes = block.bytes.data();
  written = at;
  for (bool at_row = false; !at_row && at < block.length;) {
    const auto* const newline =
        static_cast<const char*>(std::memchr(bytes + at, '\n', block.length - at));
    const std::size_t stop =
        newline == nullptr ? block.length : static_cast<std::size_t>(newline - bytes);
    parser.take(bytes + at, stop - at);
    at_row = newline != nullptr && parser.take_newline();
    at = newline == nullptr ? stop : stop + 1;
  }
  return at;
}

// A plain line has no quotes and no zero bytes, and a CR only before the LF. Takes those from `at`
// on, which is the beginning of a line. Returns the beginning of the first line that is not plain
// or has no end; the NUL after the block is no part of a plain line.
std::size_t row_division::take_plain_lines(std::size_t at) {
  char* const bytes = block.bytes.data();
  const marked_characters marked(block.form);
  constexpr std::size_t most_in_step = 2 * marked_at_once + 1;
  std::uint32_t* bound = room_for_bounds(most_in_step);
  std::size_t line_begin = at;
  *bound++ = static_cast<std::uint32_t>(at);
  bool blanks_before = false;   // at the ends of cells of the line, up to these characters
  std::uint64_t separated = 1;  // whether the character before these is a separator, or a blank
  std::uint64_t blank = 0;
  for (;; at += marked_at_once) {
    const character_marks all = marks_in(bytes + at, marked);
    // A blank is at the end of a cell if it is right after a separator or right before one.
    std::uint64_t at_ends = (all.blanks & (all.separators << 1U | separated)) |
                            (all.separators & (all.blanks << 1U | blank));
    separated = all.separators >> (marked_at_once - 1);
    blank = all.blanks >> (marked_at_once - 1);
    for (std::uint64_t marks = all.separators; marks != 0; marks &= marks - 1) {
      const std::size_t i = at + first_mark(marks);
      if (bytes[i] == marked.delimiter) {
        bytes[i] = '\0';
        *bound++ = static_cast<std::uint32_t>(i + 1);
      } else if (bytes[i] == '\n') {
        const bool is_crlf = i > bound[-1] && bytes[i - 1] == '\r';
        const std::size_t end = is_crlf ? i - 1 : i;
        const auto cells = static_cast<std::size_t>(bound - (block.bounds.data() + bounds));
        bytes[end] = '\0';
        *bound++ = static_cast<std::uint32_t>(end + 1);
        row_bound = bounds;
        const std::uint64_t of_line = (2ULL << (i - at)) - 1;
        const bool has_blanks = blanks_before || (at_ends & of_line) != 0;
        blanks_before = false;
        at_ends &= ~of_line;
        if (has_blanks) trim_cells(cells);
        if (cells == 1 && bytes[block.bounds[row_bound]] == '\0') {
          end_empty_line();
          bound -= 2;
        } else {
          begin_row();
          end_row(cells, !has_blanks);
        }
        line_begin = i + 1;
        *bound++ = static_cast<std::uint32_t>(line_begin);
      } else if (bytes[i] != '\r' || bytes[i + 1] != '\n') {
        // The line goes to the parser as it was.
        while (*--bound != line_begin) bytes[*bound - 1] = block.form.delimiter;
        return line_begin;
      }
    }
    blanks_before = blanks_before || at_ends != 0;
    const auto used = static_cast<std::size_t>(bound - block.bounds.data());
    bound = room_for_bounds(used - bounds + most_in_step) + (used - bounds);
  }
}

// Where the bounds after those in use go.
std::uint32_t* row_division::room_for_bounds(std::size_t count) {
  if (block.bounds.size() < bounds + count) block.bounds.resize(2 * (bounds + count));
  return block.bounds.data() + bounds;
}

// Moves the cells of the present row together, without the blanks around them.
void row_division::trim_cells(std::size_t cells) {
  char* const bytes = block.bytes.data();
  std::uint32_t* const bound = block.bounds.data() + row_bound;
  std::uint32_t begin = bound[0];
  for (std::size_t i = 0; i < cells; ++i) {
    std::uint32_t end = bound[i + 1] - 1;
    const std::uint32_t next = end + 1;
    while (begin < end && block.form.is_blank(bytes[begin])) ++begin;
    while (begin < end && block.form.is_blank(bytes[end - 1])) --end;
    std::memmove(bytes + bound[i], bytes + begin, end - begin);
    bound[i + 1] = bound[i] + (end - begin) + 1;
    bytes[bound[i + 1] - 1] = '\0';
    begin = next;
  }
}

void row_division::begin_row() {
  row_line = lines;
  block.skipped += std::exchange(empty_lines, 0);
}

void row_division::end_row(std::size_t cells, bool plain) {
  block.starts.push_back({static_cast<std::uint32_t>(row_bound), static_cast<std::uint32_t>(cells),
                          static_cast<std::uint32_t>(row_line), plain});
  bounds = row_bound + cells + 1;
  row_bound = bounds;
  ++lines;
}

void row_division::end_empty_line() {
  ++empty_lines;
  ++lines;
}

void row_division::add_cell(const char* text, std::size_t length) {
  if (bounds == row_bound) {
    begin_row();
    *room_for_bounds(1) = static_cast<std::uint32_t>(written);
    ++bounds;
  }
  if (text != nullptr && std::memchr(text, '\0', length) != nullptr) {
    fail("a zero byte in the text; a table is text in UTF-8 or another encoding that has none");
  }
  if (text != nullptr && length == 0)
    block.quoted_empty_cells.push_back(static_cast<std::uint32_t>(written));
  char* const cell = block.bytes.data() + written;
  if (length > 0) std::memcpy(cell, text, length);
  cell[length] = '\0';
  lines += line_ends(cell, length);
  written += length + 1;
  *room_for_bounds(1) = static_cast<std::uint32_t>(written);
  ++bounds;
}

void row_division::end_line() {
  if (bounds == row_bound) {
    end_empty_line();
  } else {
    end_row(bounds - row_bound - 1, false);
  }
}

void row_division::fail(const std::string& what) const {
  throw table_error(fmt::format("{}:{}: {}", *block.file, line(), what));
}

void divide_rows(csv_block& block) {
  row_division(block).run();
}

}  // namespace arbor::tree
