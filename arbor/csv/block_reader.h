// Reads a CSV file in blocks of whole rows.
//
//   block_reader blocks(file);
//   csv_block block;
//   while (blocks.next(block)) divide_rows(block);
#ifndef ARBOR_CSV_BLOCK_READER_H
#define ARBOR_CSV_BLOCK_READER_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "arbor/csv/byte_source.h"
#include "arbor/csv/csv_block.h"
#include "arbor/csv/csv_form.h"

namespace arbor::tree {

// A block has up to `block_size` bytes, or one row that is longer. It ends at the end of a row,
// which is where a line ends after an even number of quotes. That is wrong only after a misplaced
// quote; the block with that quote is refused when it is divided, whatever comes after it.
class block_reader {
 public:
  // Reads `source`, which must outlive this object, from its current position. A UTF-8 byte order
  // mark there is skipped. The first block has the number `first_block`. `block_size` is at least
  // 3, the length of that mark.
  explicit block_reader(byte_source& source, std::size_t first_block = 0,
                        std::size_t block_size = 1U << 15U)
      : file(source),
        name(std::make_shared<std::string>(source.name())),
        usual_size(block_size),
        blocks(first_block) {}

  // The first bytes of the file: up to the size of a block, or more until they have three lines,
  // so that there is a row below the column names, even if a line above these declares the
  // delimiter. The first block has these lines too, then. To be called before `next`; valid until
  // that is called. Throws table_error when the file cannot be read.
  std::string_view beginning();

  // The source is a part of a file. It begins with this line, and no byte order mark is skipped.
  void begin_at(unsigned long long first_line) {
    line = first_line;
    has_begun = true;
  }

  // The form of the rows; commas and no blanks around cells unless this is called.
  void expect(const csv_form& of_rows) { form = of_rows; }

  // Reads the bytes of the next block. Returns false at the end of the file. The block's old
  // content is lost; its storage is used again. When the file cannot be read, or a row is longer
  // than 4294967040 bytes, the block has no rows and its check_end throws.
  bool next(csv_block& block);

  // The number that the next block will have.
  std::size_t next_number() const { return blocks; }

 private:
  void fill(csv_block& block);
  std::size_t read(char* buffer, std::size_t size);

  byte_source& file;
  std::shared_ptr<const std::string> name;
  csv_form form;
  std::size_t usual_size;
  std::vector<char> rest;  // of the bytes that were read, those after the last block
  unsigned long long line = 1;
  std::size_t blocks;  // the number of the next one
  bool has_begun = false;
  bool ended = false;
};

}  // namespace arbor::tree

#endif
