// A stream into a file that is replaced.
//
//   file_replacement file("rows.csv");
//   replacement_stream rows(file);
//   rows << "a,b\n";
//   rows.flush();
//   file.commit();
#ifndef ARBOR_STORE_REPLACEMENT_STREAM_H
#define ARBOR_STORE_REPLACEMENT_STREAM_H

#include <array>
#include <ostream>
#include <streambuf>

#include "arbor/store/file_replacement.h"

namespace arbor::tree {

// Buffered: `flush` before the commit. Each output operation passes on what file_replacement::write
// throws, so that a full disk ends the work that writes. The file stays the caller's and must
// outlive the stream.
class replacement_stream : public std::ostream {
 public:
  explicit replacement_stream(file_replacement& file);

 private:
  class buffer : public std::streambuf {
   public:
    explicit buffer(file_replacement& file);

   protected:
    int_type overflow(int_type next) override;
    int sync() override;

   private:
    file_replacement* to;
    std::array<char, 1U << 13U> bytes{};
  };

  buffer written;
};

}  // namespace arbor::tree

#endif
