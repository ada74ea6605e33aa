// Reads a text line by line.
//
//   line_reader lines(file);
//   for (std::string_view line; lines.next(line);) ...
#ifndef ARBOR_FORMATS_LINE_READER_H
#define ARBOR_FORMATS_LINE_READER_H

#include <string>
#include <string_view>
#include <vector>

#include "arbor/csv/byte_source.h"

namespace arbor::tree {

// LF, CRLF and CR end a line. A UTF-8 byte order mark at the beginning is skipped.
class line_reader {
 public:
  // Reads `of`, which must outlive this object, from its current position.
  explicit line_reader(byte_source& of) : source(of) {}

  // Reads a line, without its end; it is valid until the next call. Returns false when there are no
  // more. Throws table_error for a zero byte in a line.
  bool next(std::string_view& line);

  // The number of the last line that was read, from 1.
  unsigned long long number() const { return lines; }

  // Throws table_error: the name of the file, that number, and `what`.
  [[noreturn]] void fail(const std::string& what) const;

 private:
  bool fill();

  byte_source& source;
  std::vector<char> bytes;
  std::size_t begin = 0;  // of what has not been delivered
  std::size_t end = 0;    // of what has been read
  unsigned long long lines = 0;
  bool ended = false;
};

}  // namespace arbor::tree

#endif
