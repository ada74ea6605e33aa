#include "arbor/csv/comment_filter.h"

#include <algorithm>

#include "arbor/csv/line_ends.h"

namespace arbor::tree {

std::size_t comment_filter::read(char* buffer, std::size_t size) {
  std::size_t count = 0;
  while (count < size && (delivered < filtered.size() || fill())) {
    const std::size_t part = std::min(size - count, filtered.size() - delivered);
    std::copy_n(filtered.data() + delivered, part, buffer + count);
    delivered += part;
    count += part;
  }
  return count;
}

// Makes some more bytes, perhaps none. Returns false at the end of the file.
bool comment_filter::fill() {
  constexpr std::size_t part = 1U << 16U;
  bytes.resize(part);
  bytes.resize(file->read(bytes.data(), part));
  filtered.clear();
  delivered = 0;
  std::size_t mark = 0;
  if (std::exchange(is_first, false)) mark = byte_order_mark(bytes.data(), bytes.size());
  filtered.append(bytes.data(), mark);
  for (std::size_t i = mark; i < bytes.size(); ++i) take(bytes[i]);
  if (!bytes.empty()) return true;
  filtered.append(comment, 0, std::exchange(matched, 0));
  return !filtered.empty();
}

void comment_filter::take(char c) {
  if (present == line::unknown) {
    if (c == comment[matched]) {
      if (++matched < comment.size()) return;
      matched = 0;
      present = line::comment;
      return;
    }
    filtered.append(comment, 0, std::exchange(matched, 0));
    present = line::row;
  }
  if (present == line::row && c == '"') in_quotes = !in_quotes;
  const bool ends = is_line_end(c) && !in_quotes;
  if (present == line::row || ends) filtered += c;
  if (ends) present = line::unknown;
}

}  // namespace arbor::tree
