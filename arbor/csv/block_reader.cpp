#include "arbor/csv/block_reader.h"

#include <fmt/format.h>

#include <cstring>
#include <limits>

#include "arbor/csv/character_marks.h"
#include "arbor/csv/line_ends.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

constexpr std::size_t readable_after_block = marked_at_once + readable_after_cell;
// So that the bounds of its cells are numbers of 32 bits.
constexpr std::size_t longest_block = std::numeric_limits<std::uint32_t>::max() - 255;

bool is_line_end(char c) {
  return c == '\n' || c == '\r';
}

// The end of the last row that ends in these bytes, which begin with a row or with empty lines; 0
// if none does. Empty lines after that row are left to the block of the next row: there they are
// an error, and at the end of the file they are none.
std::size_t end_of_rows(const char* bytes, std::size_t size) {
  bool outside = true;  // of quotes, after the character before `end`
  if (std::memchr(bytes, '"', size) != nullptr)
    outside = count_of(size, [=](std::size_t i) { return bytes[i] == '"'; }) % 2 == 0;
  std::size_t end = size;
  // The last CR may be half of a CRLF.
  if (end > 0 && outside && bytes[end - 1] == '\r') --end;
  for (; end > 0 && !(outside && is_line_end(bytes[end - 1])); --end) {
    if (bytes[end - 1] == '"') outside = !outside;
  }
  while (end > 0 && is_line_end(bytes[end - 1])) --end;
  if (end == 0) return 0;
  return bytes[end] == '\r' && bytes[end + 1] == '\n' ? end + 2 : end + 1;
}

// Whether an opening quote stands elsewhere than at the beginning of a cell. Then the quotes after
// it say nothing about where rows end.
bool has_misplaced_quote(const char* bytes, std::size_t size) {
  bool outside = true;
  for (std::size_t i = 0; i < size; ++i) {
    if (bytes[i] != '"') continue;
    const bool begins_cell = i == 0 || std::memchr(",\r\n\"", bytes[i - 1], 4) != nullptr;
    if (outside && !begins_cell) return true;
    outside = !outside;
  }
  return false;
}

std::size_t length_of_mark(const char* bytes, std::size_t size) {
  constexpr std::size_t length = 3;
  return size >= length && std::memcmp(bytes, "\xEF\xBB\xBF", length) == 0 ? length : 0;
}

}  // namespace

bool block_reader::next(csv_block& block) {
  block.length = 0;
  block.starts.clear();
  block.quoted_empty_cells.clear();
  block.error = nullptr;
  block.first_line = line;
  block.place = blocks++;
  if (ended) return false;
  try {
    fill(block);
  } catch (const table_error&) {
    ended = true;
    block.error = std::current_exception();
    return true;
  }
  line += line_ends(block.bytes.data(), block.length);
  return block.length > 0;
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
    const std::size_t count = file.read(bytes + size, capacity - size);
    ended = count < capacity - size;
    const std::size_t mark = block.place == 0 && size == 0 ? length_of_mark(bytes, count) : 0;
    if (mark > 0) std::memmove(bytes, bytes + mark, count - mark);
    size += count - mark;
    block.length = ended ? size : end_of_rows(bytes, size);
    if (block.length == 0 && !ended && has_misplaced_quote(bytes, size)) block.length = size;
    if (block.length > 0 || ended) break;
    if (capacity == longest_block) {
      throw table_error(fmt::format("{}:{}: a row of more than {} bytes; is a quote never closed?",
                                    file.name(), line, longest_block));
    }
    capacity *= 2;
  }
  char* const end = block.bytes.data() + block.length;
  rest.assign(end, block.bytes.data() + size);
  *end = '\0';
}

}  // namespace arbor::tree
