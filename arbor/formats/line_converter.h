// The lines of a file of another format as lines of comma-separated values (RFC 4180).
//
// Each line of the file becomes one line, so that messages about a row name its line: a line that
// is no row becomes an empty one. The line ends in a cell, which other formats write with an
// escape, are in quotes and do not count. An unknown value becomes an empty cell without quotes,
// and nothing else does. (If the row has no other cell, its line is empty then, and it is no row of
// the table.)
#ifndef ARBOR_FORMATS_LINE_CONVERTER_H
#define ARBOR_FORMATS_LINE_CONVERTER_H

#include <memory>
#include <string>
#include <string_view>

#include "arbor/formats/line_reader.h"

namespace arbor::tree {

// A cell as it is read from a line.
struct written_cell {
  std::string text;
  // Whether it was written with quotes or an escape. Then it is a text, even if that is empty or a
  // question mark; otherwise those are the unknown value.
  bool is_literal = false;
};

// Appends the cell, in quotes if it needs them.
void append_converted(const written_cell& cell, std::string& to);

class line_converter : public byte_source {
 public:
  std::size_t read(char* buffer, std::size_t size) final;
  unsigned long long bytes_of_file() const final { return file->bytes_of_file(); }
  const std::string& name() const final { return file->name(); }

 protected:
  explicit line_converter(std::unique_ptr<byte_source> of) : file(std::move(of)) {}

  // Appends the cells of the row that stands in the line, if there is one, with commas between
  // them. Throws table_error.
  virtual void convert(std::string_view line, std::string& to) = 0;

  // To be called when the constructor has read lines that are no rows.
  void count_lines_before_rows() { converted.assign(lines.number(), '\n'); }

  const std::unique_ptr<byte_source> file;
  line_reader lines{*file};

 private:
  std::string converted;
  std::size_t given = 0;  // of those bytes
};

}  // namespace arbor::tree

#endif
