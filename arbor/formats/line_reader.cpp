#include "arbor/formats/line_reader.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>

#include "arbor/csv/table_error.h"

namespace arbor::tree {

namespace {

constexpr std::size_t usual_buffer = 1U << 15U;

bool is_end_or_zero(char c) {
  return c == '\n' || c == '\r' || c == '\0';
}

}  // namespace

bool line_reader::next(std::string_view& line) {
  ++lines;
  std::size_t length = 0;
  for (;;) {
    const char* const from = bytes.data() + begin;
    const char* const stop = bytes.data() + end;
    length = static_cast<std::size_t>(std::find_if(from + length, stop, is_end_or_zero) - from);
    const bool may_be_crlf = begin + length + 1 == end && from[length] == '\r';
    if (begin + length < end && !may_be_crlf) break;
    if (!fill()) break;
  }
  if (begin == end) {
    --lines;
    return false;
  }
  line = {bytes.data() + begin, length};
  begin += length;
  if (begin < end) {
    if (bytes[begin] == '\0')
      fail("a zero byte in the text; a table is text in UTF-8 or another encoding that has none");
    begin += begin + 1 < end && bytes[begin] == '\r' && bytes[begin + 1] == '\n' ? 2 : 1;
  }
  constexpr std::string_view mark = "\xEF\xBB\xBF";
  if (lines == 1 && line.substr(0, mark.size()) == mark) line.remove_prefix(mark.size());
  return true;
}

// Reads more behind what has not been delivered. Returns false at the end.
bool line_reader::fill() {
  if (ended) return false;
  std::copy(bytes.begin() + static_cast<std::ptrdiff_t>(begin),
            bytes.begin() + static_cast<std::ptrdiff_t>(end), bytes.begin());
  end -= begin;
  begin = 0;
  if (bytes.size() < 2 * end || bytes.empty()) bytes.resize(std::max(usual_buffer, 2 * end));
  const std::size_t count = source.read(bytes.data() + end, bytes.size() - end);
  ended = count < bytes.size() - end;
  end += count;
  return count > 0;
}

void line_reader::fail(const std::string& what) const {
  throw table_error(fmt::format("{}:{}: {}", source.name(), lines, what));
}

}  // namespace arbor::tree
