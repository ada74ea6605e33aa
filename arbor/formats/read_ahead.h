// Reads bytes on a thread of its own before they are asked for, up to a megabyte of them. This is
// for bytes that take time to make, as those of a compressed file do.
//
//   read_ahead bytes(std::make_unique<gzip_source>(std::move(file), limit));
//   while (std::size_t count = bytes.read(buffer, sizeof buffer)) ...
#ifndef ARBOR_FORMATS_READ_AHEAD_H
#define ARBOR_FORMATS_READ_AHEAD_H

#include <array>
#include <condition_variable>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "arbor/csv/byte_source.h"

namespace arbor::tree {

// Delivers the same bytes as its source, and throws what that throws after the bytes before.
class read_ahead : public byte_source {
 public:
  // Reads without a thread if the system refuses one. Throws std::bad_alloc.
  explicit read_ahead(std::unique_ptr<byte_source> of);
  // Waits for the part that is being read, but not for the end.
  ~read_ahead() override;

  std::size_t read(char* buffer, std::size_t size) override;
  unsigned long long bytes_of_file() const override { return bytes_read; }
  const std::string& name() const override { return source_name; }

 private:
  struct part {
    std::vector<char> bytes;
    std::size_t size = 0;  // of what was read
    unsigned long long bytes_of_file = 0;
    std::exception_ptr error;  // after the bytes
    bool is_last = false;
  };

  void run_reader();
  void fill(part& next);

  std::unique_ptr<byte_source> source;  // the reader's alone, once it runs
  const std::string source_name;
  unsigned long long bytes_read = 0;
  std::array<part, 4> parts;  // used in turns
  std::size_t given = 0;      // bytes of the part that is given out

  std::mutex mutex;  // guards the fields below, which say whose a part is
  std::condition_variable changed;
  std::size_t filled = 0;  // parts so far
  std::size_t taken = 0;   // parts so far; those from here up to `filled` are not the reader's
  bool stopping = false;
  std::thread reader;
};

}  // namespace arbor::tree

#endif
