// The rows of a CSV file one by one, for tests: those of tables are read in blocks.
#ifndef ARBOR_TESTS_SUPPORT_ROWS_H
#define ARBOR_TESTS_SUPPORT_ROWS_H

#include <string>

#include "arbor/csv/block_reader.h"
#include "arbor/csv/input_file.h"
#include "arbor/csv/row_division.h"

namespace arbor::tests {

// Calls use(row) for each row of the file, the first one like any other. Of a part of a file,
// `first_line` is the number of its first line.
template <class Use>
void read_rows(tree::byte_source& file, Use use, const tree::csv_form& form,
               unsigned long long first_line = 0) {
  tree::block_reader blocks(file);
  if (first_line > 0) blocks.begin_at(first_line);
  blocks.expect(form);
  for (tree::csv_block block; blocks.next(block); block.check_end()) {
    tree::divide_rows(block);
    for (std::size_t i = 0; i < block.rows(); ++i) use(block.row(i));
  }
}
template <class Use>
void read_rows(const std::string& path, Use use, const tree::csv_form& form = {}) {
  tree::input_file file(path);
  read_rows(file, use, form);
}

}  // namespace arbor::tests

#endif
