#include "arbor/csv/block_reader.h"

#include <fmt/format.h>

#include <cstring>
#include <limits>
#include <utility>

#include "arbor/csv/character_marks.h"
#include "arbor/csv/line_ends.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

constexpr std::size_t readable_after_block = marked_at_once + readable_after_cell;
// So that the bounds of its cells are numbers of 32 bits.
constexpr std::size_t longest_block = std::numeric_limits<std::uint32_t>::max() - 255;

// The end of the last row that ends in these bytes, which begin with a row or with empty lines; 0
// if none does. Empty lines after that row are left to the block of the next row, which counts them,
// while those at the end of the file do not count.
std::size_t end_of_rows(const char* bytes, std::size_t size, const csv_form& form) {
  bool outside = true;  // of quotes, after the character before `end`
  if (std::memchr(bytes, '"', size) != nullptr)
    outside = count_of(size, [=](std::size_t i) { return bytes[i] == '"'; }) % 2 == 0;
  std::size_t end = size;
  // The last CR may be half of a CRLF.
  if (end > 0 && outside && bytes[end - 1] == '\r') --end;
  for (; end > 0 && !(outside && is_line_end(bytes[end - 1])); --end) {
    if (bytes[end - 1] == '"') outside = !outside;
  }
  std::size_t before_blanks = end;
  while (before_blanks > 0 && is_line_end(bytes[before_blanks - 1])) {
    end = before_blanks - 1;
    before_blanks = end;
    while (before_blanks > 0 && form.is_blank(bytes[before_blanks - 1])) --before_blanks;
  }
  if (before_blanks == 0) return 0;
  return bytes[end] == '\r' && bytes[end + 1] == '\n' ? end + 2 : end + 1;
}

// Whether an opening quote stands elsewhere than at the beginning of a cell. Then the quotes after
// it say nothing about where rows end.
bool has_misplaced_quote(const char* bytes, std::size_t size, const csv_form& form) {
  bool outside = true;
  bool begins_cell = true;  // whether there are only blanks since the last delimiter or line end
  for (std::size_t i = 0; i < size; ++i) {
    const char c = bytes[i];
    if (c == '"') {
      if (outside && !begins_cell) return true;
      outside = !outside;
      begins_cell = true;  // a second quote, if it follows, stands for one
    } else {
      begins_cell = c == form.delimiter || is_line_end(c) || (begins_cell && form.is_blank(c));
    }
  }
  return false;
}

// Of lines that end in LF.
std::size_t line_ends_outside_quotes(const char* bytes, std::size_t size) {
  std::size_t count = 0;
  bool outside = true;
  for (std::size_t i = 0; i < size; ++i) {
    if (bytes[i] == '"') outside = !outside;
    if (outside && bytes[i] == '\n') ++count;
  }
  return count;
}

}  // namespace

std::string_view block_reader::beginning() {
  if (!has_begun) {
    rest.resize(usual_size);
    rest.resize(read(rest.data(), usual_size));
  }
  return {rest.data(), rest.size()};
}

bool block_reader::next(csv_block& block) {
  block.length = 0;
  block.starts.clear();
  block.quoted_empty_cells.clear();
  block.skipped = 0;
  block.error = nullptr;
  block.first_line = line;
  block.place = blocks;
  block.file = name;
  block.form = form;
  if (ended && rest.empty()) return false;
  try {
    fill(block);
  } catch (const table_error&) {
    ended = true;
    rest.clear();
    block.error = std::current_exception();
  }
  line += form.rows_are_lines ? line_ends_outside_quotes(block.bytes.data(), block.length)
                              : line_ends(block.bytes.data(), block.length);
  const bool exists = block.length > 0 || block.error != nullptr;
  if (exists) ++blocks;
  return exists;
}

void block_reader::fill(csv_block& block) {
  std::size_t capacity = std::max(usual_size, 2 * rest.size());
  std::size_t size = rest.size();
  for (;;) {
    capacity = std::min(capacity, longest_block);
    if (block.bytes.size() < capacity + readable_after_block)
      block.bytes.resize(capacity + readable_after_block);
    char* const bytes = block.bytes.data();
    std::copy(rest.begin(), rest.end(), bytes);
    rest.clear();
    if (!ended) size += read(bytes + size, capacity - size);
    block.length = ended ? size : end_of_rows(bytes, size, form);
    if (block.length == 0 && !ended && has_misplaced_quote(bytes, size, form)) block.length = size;
    if (block.length > 0 || ended) break;
    if (capacity == longest_block) {
      throw table_error(fmt::format("{}:{}: a row of more than {} bytes; is a quote never closed?",
                                    *name, line, longest_block));
    }
    capacity *= 2;
  }
  char* const end = block.bytes.data() + block.length;
  rest.assign(end, block.bytes.data() + size);
  *end = '\0';
}

// Fewer bytes than asked for are the last ones.
std::size_t block_reader::read(char* buffer, std::size_t size) {
  std::size_t count = file.read(buffer, size);
  ended = count < size;
  if (!std::exchange(has_begun, true)) {
    const std::size_t mark = byte_order_mark(buffer, count);
    count -= mark;
    std::memmove(buffer, buffer + mark, count);
  }
  return count;
}

}  // namespace arbor::tree
