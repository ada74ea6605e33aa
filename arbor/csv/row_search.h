// Finds where rows begin in a CSV file of which only a part is read. Whether a line end is one of a
// row or in a quoted cell depends on how many quotes are before it, in the whole file: they are
// counted in each part, and added up.
//
//   const range_counts before = counts_in(path, 0, half);
//   const file_place place{half, 1 + before.line_ends, before.quotes % 2 == 1};
//   const std::optional<file_place> row = next_row(path, place, end, form);
#ifndef ARBOR_CSV_ROW_SEARCH_H
#define ARBOR_CSV_ROW_SEARCH_H

#include <cstdint>
#include <optional>
#include <string>

#include "arbor/csv/csv_form.h"

namespace arbor::tree {

// What a range of the bytes of a file has. A CRLF ends a line with its LF.
struct range_counts {
  std::uint64_t quotes;
  std::uint64_t line_ends;
};

struct file_place {
  std::uint64_t byte;
  unsigned long long line;  // from 1
  bool in_quotes;           // after an odd number of quotes
};

// The functions throw table_error when the file cannot be read.

range_counts counts_in(const std::string& path, std::uint64_t first, std::uint64_t end);

// The place right after the first row that ends from `from` to before `end`, if something of it
// is there besides its end; none if there is no such row. Empty lines before a row are part of it.
// That is where the next row begins unless a quote before it is misplaced.
std::optional<file_place> next_row(const std::string& path, file_place from, std::uint64_t end,
                                   const csv_form& form);

// The place after the row of names, if there is one, and after a line that declares the delimiter.
// The end of the file, of `size` bytes, if the rows before it do not end.
file_place first_row(const std::string& path, std::uint64_t size, const csv_form& form,
                     bool has_names);

}  // namespace arbor::tree

#endif
