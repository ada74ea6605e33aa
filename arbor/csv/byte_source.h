// Bytes in their order: of a file, or of what is made of a file while it is read.
//
//   while (std::size_t count = source.read(buffer, sizeof buffer)) ...
#ifndef ARBOR_CSV_BYTE_SOURCE_H
#define ARBOR_CSV_BYTE_SOURCE_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace arbor::tree {

class byte_source {
 public:
  byte_source() = default;
  virtual ~byte_source() = default;
  byte_source(const byte_source&) = delete;
  byte_source& operator=(const byte_source&) = delete;

  // Reads the next bytes into `buffer`, and returns how many: `size`, or fewer at the end. Throws
  // table_error, naming the file, when it cannot be read or is not what it should be.
  virtual std::size_t read(char* buffer, std::size_t size) = 0;

  // How many bytes of the file have been read so far to deliver those.
  virtual unsigned long long bytes_of_file() const = 0;

  // The size of the file if it is a regular one and these are its bytes as they are, so that a part
  // of it can be read without what is before.
  virtual std::optional<std::uint64_t> plain_size() const { return std::nullopt; }

  // How messages name the file.
  virtual const std::string& name() const = 0;
};

}  // namespace arbor::tree

#endif
