// The bytes that were compressed into a zstd file (RFC 8878).
//
//   zstd_source bytes(std::make_unique<input_file>("golf.csv.zst"), {});
//   while (std::size_t count = bytes.read(buffer, sizeof buffer)) ...
#ifndef ARBOR_FORMATS_ZSTD_SOURCE_H
#define ARBOR_FORMATS_ZSTD_SOURCE_H

#include <zstd.h>

#include <memory>
#include <string>
#include <vector>

#include "arbor/csv/byte_source.h"
#include "arbor/csv/expansion_limit.h"

namespace arbor::tree {

// A file may have several frames, each compressed by itself; their bytes follow one another. Frames
// for other programs are skipped. A frame that needs a window of more than 128 MiB is refused.
class zstd_source : public byte_source {
 public:
  // Reads `file` from its current position, to its end. Throws std::bad_alloc.
  zstd_source(std::unique_ptr<byte_source> file, expansion_limit limit);

  // Throws table_error for data that is damaged or ends too early, and beyond the limit.
  std::size_t read(char* buffer, std::size_t size) override;
  unsigned long long bytes_of_file() const override { return compressed->bytes_of_file(); }
  const std::string& name() const override { return compressed->name(); }

 private:
  std::unique_ptr<byte_source> compressed;
  expansion_limit most;
  unsigned long long given = 0;
  std::vector<char> input;
  ::ZSTD_inBuffer unread{};  // in `input`
  std::unique_ptr<::ZSTD_DStream, std::size_t (*)(::ZSTD_DStream*)> stream;
  bool between_frames = false;
};

}  // namespace arbor::tree

#endif
