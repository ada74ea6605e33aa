// A part of one of the files of a table. Its rows are read without what is before it.
#ifndef ARBOR_CSV_FILE_PART_H
#define ARBOR_CSV_FILE_PART_H

#include <cstddef>
#include <cstdint>
#include <optional>

namespace arbor::tree {

struct file_part {
  // A range of the bytes of a plain CSV file, which begins and ends where rows do. The first one of
  // a file begins with byte 0 and has the row of names.
  struct byte_range {
    std::uint64_t first;
    std::uint64_t end;
    unsigned long long line;  // with which it begins, from 1
  };

  std::size_t file = 0;             // from 0
  std::optional<byte_range> range;  // none: the whole file
};

}  // namespace arbor::tree

#endif
