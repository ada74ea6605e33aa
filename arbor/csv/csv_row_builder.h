// Puts the rows of a CSV file together, from cells that a parser reports or straight from plain
// lines. Internal to the reader.
#ifndef ARBOR_CSV_CSV_ROW_BUILDER_H
#define ARBOR_CSV_CSV_ROW_BUILDER_H

#include <functional>
#include <string>
#include <string_view>

#include "arbor/csv/csv_reader.h"

namespace arbor::tree {

class csv_row_builder {
 public:
  csv_row_builder(const std::string& file_name, const std::function<void(const csv_row&)>& use_row)
      : name(file_name), use(use_row) {}

  // From a parser: the next cell, its `text` null for an empty cell without quotes.
  void add_cell(const char* text, std::size_t length);

  // From a parser: an end of a line outside quotes, so that CRLF comes as two of them, and an empty
  // line as one without cells. `terminator` is CR, LF or, at the end of a file without one, -1.
  void end_line(int terminator);

  // How many ends of lines the parser has reported.
  unsigned long long ended_lines() const { return ends; }

  // Takes whole plain lines, those without quotes, zero bytes and a CR that no LF follows: their
  // cells are simply what stands between commas. Returns how many of the `count` bytes they take;
  // what comes then is no plain line or is incomplete. Puts NULs behind the cells. Eight bytes more
  // than `count` must be readable.
  std::size_t take_plain_lines(char* bytes, std::size_t count);

  [[noreturn]] void fail(const std::string& what) const;

 private:
  void begin_row();
  void finish_row(const char* characters);

  const std::string& name;
  const std::function<void(const csv_row&)>& use;
  csv_row row;
  std::string reported;               // the cells from a parser, a NUL after each
  unsigned long long line = 1;        // where the next cell begins
  unsigned long long empty_line = 0;  // the first of those since the last row
  unsigned long long ends = 0;
  bool after_cr = false;
};

}  // namespace arbor::tree

#endif
