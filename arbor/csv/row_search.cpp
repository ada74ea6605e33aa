#include "arbor/csv/row_search.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "arbor/csv/found_delimiter.h"
#include "arbor/csv/input_file.h"
#include "arbor/csv/line_ends.h"

namespace arbor::tree {

namespace {

// Small enough to stay in the processor's nearer caches between two passes.
constexpr std::size_t bytes_at_once = 1U << 17U;

// Looks for the end of a row, byte by byte.
class row_end_search {
 public:
  row_end_search(const file_place& from, std::uint64_t search_end, const csv_form& of_file)
      : place(from), end(search_end), form(of_file), has_content(from.in_quotes) {}

  // Takes the next byte. Returns whether the search is over.
  bool take(char c) {
    const bool belongs_to_cr = c == '\n' && after_cr;
    if (row_ended || place.byte == end) {
      if (row_ended && belongs_to_cr) ++place.byte;
      return true;
    }
    after_cr = c == '\r';
    ++place.byte;
    if (belongs_to_cr) return false;
    if (is_line_end(c)) {
      ++place.line;
      row_ended = has_content && !place.in_quotes;
      // After an LF nothing can belong to the end.
      return row_ended && c == '\n';
    }
    if (c == '"') place.in_quotes = !place.in_quotes;
    has_content = has_content || !form.is_blank(c);
    return false;
  }

  std::optional<file_place> result() const {
    return row_ended ? std::optional<file_place>(place) : std::nullopt;
  }

 private:
  file_place place;
  std::uint64_t end;
  csv_form form;
  bool has_content;
  bool row_ended = false;
  bool after_cr = false;
};

}  // namespace

range_counts counts_in(const std::string& path, std::uint64_t first, std::uint64_t end) {
  // Whether a CR ends a line is seen from the byte after it.
  input_file file(path, first, end + 1);
  range_counts counts{0, 0};
  std::vector<char> bytes(bytes_at_once + 1, '\0');
  std::size_t kept = 0;  // bytes that have been read and not been counted
  for (std::uint64_t left = end - first; left > 0;) {
    const std::size_t size = kept + file.read(bytes.data() + kept, bytes_at_once - kept);
    const bool is_last = size < bytes_at_once;
    bytes[size] = '\0';
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(left, is_last ? size : size - 1));
    counts.quotes += count_of(count, [&](std::size_t i) { return bytes[i] == '"'; });
    counts.line_ends += line_ends(bytes.data(), count);
    if (is_last) break;
    left -= count;
    bytes[0] = bytes[count];
    kept = 1;
  }
  return counts;
}

std::optional<file_place> next_row(const std::string& path, file_place from, std::uint64_t end,
                                   const csv_form& form) {
  input_file file(path, from.byte, end + 1);
  row_end_search search(from, end, form);
  std::vector<char> bytes(bytes_at_once);
  for (std::size_t size = bytes.size(); size == bytes.size();) {
    size = file.read(bytes.data(), bytes.size());
    for (std::size_t i = 0; i < size; ++i) {
      if (search.take(bytes[i])) return search.result();
    }
  }
  return search.result();
}

file_place first_row(const std::string& path, std::uint64_t size, const csv_form& form,
                     bool has_names) {
  constexpr std::size_t enough = 16;  // for a byte order mark and a declared delimiter
  std::string beginning(enough, '\0');
  beginning.resize(input_file(path).read(beginning.data(), enough));
  const std::size_t mark = byte_order_mark(beginning.data(), beginning.size());
  file_place place{mark, 1, false};
  const bool is_declared = declared_delimiter(beginning.substr(mark)).has_value();
  for (int rows = (is_declared ? 1 : 0) + (has_names ? 1 : 0); rows > 0; --rows)
    place = next_row(path, place, size, form).value_or(file_place{size, 1, false});
  return place;
}

}  // namespace arbor::tree
