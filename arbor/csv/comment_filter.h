// A CSV file without its comments: a line that begins with a certain text becomes an empty line.
#ifndef ARBOR_CSV_COMMENT_FILTER_H
#define ARBOR_CSV_COMMENT_FILTER_H

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arbor/csv/byte_source.h"

namespace arbor::tree {

// The quotes of a comment would mislead the search for the ends of rows, so it goes before that. A
// line that begins within a quoted cell is no comment.
class comment_filter : public byte_source {
 public:
  // `beginning` is that of a comment: not empty, without quotes and line ends.
  comment_filter(std::unique_ptr<byte_source> of_file, std::string beginning)
      : file(std::move(of_file)), comment(std::move(beginning)) {}

  std::size_t read(char* buffer, std::size_t size) override;
  const std::string& name() const override { return file->name(); }
  unsigned long long bytes_of_file() const override { return file->bytes_of_file(); }

 private:
  // Whether the present line may still be a comment, because it begins like one so far; what it is.
  enum class line { unknown, comment, row };

  bool fill();
  void take(char c);

  std::unique_ptr<byte_source> file;
  std::string comment;
  std::vector<char> bytes;  // of the file
  std::string filtered;     // made of these
  std::size_t delivered = 0;
  line present = line::unknown;
  std::size_t matched = 0;  // how many bytes of an unknown line, all like those of a comment
  bool in_quotes = false;
  bool is_first = true;
};

}  // namespace arbor::tree

#endif
