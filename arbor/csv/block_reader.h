// Reads a CSV file in blocks of whole rows.
//
//   block_reader blocks(file);
//   csv_block block;
//   while (blocks.next(block)) divide_rows(block, file.name());
#ifndef ARBOR_CSV_BLOCK_READER_H
#define ARBOR_CSV_BLOCK_READER_H

#include <vector>

#include "arbor/csv/csv_block.h"
#include "arbor/csv/input_file.h"

namespace arbor::tree {

// A block has up to `block_size` bytes, or one row that is longer. It ends at the end of a row,
// which is where a line ends after an even number of quotes. That is wrong only after a misplaced
// quote; the block with that quote is refused when it is divided, whatever comes after it.
class block_reader {
 public:
  // Reads `source`, which must outlive this object, from its current position. A UTF-8 byte order
  // mark there is skipped. `block_size` is at least 3, the length of that mark.
  explicit block_reader(input_file& source, std::size_t block_size = 1U << 15U)
      : file(source), usual_size(block_size) {}

  // Reads the bytes of the next block. Returns false at the end of the file. The block's old
  // content is lost; its storage is used again. When the file cannot be read, or a row is longer
  // than 4294967040 bytes, the block has no rows and its check_end throws.
  bool next(csv_block& block);

 private:
  void fill(csv_block& block);

  input_file& file;
  std::size_t usual_size;
  std::vector<char> rest;  // of the bytes that were read, those after the last block
  unsigned long long line = 1;
  std::size_t blocks = 0;
  bool ended = false;
};

}  // namespace arbor::tree

#endif
