// The bytes of a file or of standard input, from beginning to end.
//
//   input_file file("-");
//   while (std::size_t count = file.read(buffer, sizeof buffer)) ...
//   input_file second_half("golf.csv", size / 2, size);
#ifndef ARBOR_CSV_INPUT_FILE_H
#define ARBOR_CSV_INPUT_FILE_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <memory>
#include <string>

#include "arbor/csv/byte_source.h"

namespace arbor::tree {

class input_file : public byte_source {
 public:
  // Opens the file at `path`; "-" is standard input, from its current position on. Throws
  // table_error when it cannot be opened.
  explicit input_file(const std::string& path);
  // The bytes from `first` to before `end` of a regular file, or to its end if that comes before.
  // Throws in the same way.
  input_file(const std::string& path, std::uint64_t first, std::uint64_t end);

  std::size_t read(char* buffer, std::size_t size) override;
  unsigned long long bytes_of_file() const override { return bytes_read; }
  std::optional<std::uint64_t> plain_size() const override;
  const std::string& name() const override { return display_name; }

 private:
  using handle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

  [[noreturn]] void fail(const std::string& what) const;

  std::string display_name;
  handle file;
  std::uint64_t bytes_left = std::numeric_limits<std::uint64_t>::max();  // that may be read
  unsigned long long bytes_read = 0;
};

}  // namespace arbor::tree

#endif
