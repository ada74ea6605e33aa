// The bytes that were compressed into a gzip file (RFC 1952).
//
//   gzip_source bytes(std::make_unique<input_file>("golf.csv.gz"), {});
//   while (std::size_t count = bytes.read(buffer, sizeof buffer)) ...
#ifndef ARBOR_FORMATS_GZIP_SOURCE_H
#define ARBOR_FORMATS_GZIP_SOURCE_H

#include <zlib.h>

#include <memory>
#include <string>
#include <vector>

#include "arbor/csv/byte_source.h"
#include "arbor/csv/expansion_limit.h"

namespace arbor::tree {

// A file may have several members, each compressed by itself; their bytes follow one another. Zero
// bytes after the last one are ignored, since they fill up blocks of a device.
class gzip_source : public byte_source {
 public:
  // Reads `file` from its current position, to its end. Throws std::bad_alloc.
  gzip_source(std::unique_ptr<byte_source> file, expansion_limit limit);
  ~gzip_source() override;

  // Throws table_error for data that is damaged or ends too early, and beyond the limit.
  std::size_t read(char* buffer, std::size_t size) override;
  unsigned long long bytes_of_file() const override { return compressed->bytes_of_file(); }
  const std::string& name() const override { return compressed->name(); }

 private:
  bool has_input();
  bool has_next_member();

  std::unique_ptr<byte_source> compressed;
  expansion_limit most;
  unsigned long long given = 0;
  std::vector<char> input;
  ::z_stream stream{};
  bool ended = false;
};

}  // namespace arbor::tree

#endif
