// A block of whole rows of a CSV file, divided into cells. A file is read block by block, and its
// blocks can be divided and used on several threads.
//
//   for (std::size_t i = 0; i < block.rows(); ++i) use(block.row(i).text(0));
//   block.check_end();
#ifndef ARBOR_CSV_CSV_BLOCK_H
#define ARBOR_CSV_CSV_BLOCK_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "arbor/csv/cell_text.h"
#include "arbor/csv/csv_form.h"
#include "arbor/csv/table_error.h"

namespace arbor::tree {

class csv_block;

// Refers to its block, and is valid until the block changes.
class csv_row {
 public:
  // How many cells there are; they are numbered from 0.
  std::size_t size() const { return cells; }
  // The text of a cell, NUL-terminated, without quotes around it, and without blanks around it if
  // the form of the file has none.
  const char* text(std::size_t cell) const { return characters + bounds[cell]; }
  cell_text cell(std::size_t cell) const {
    return {text(cell), bounds[cell + 1] - bounds[cell] - 1};
  }
  // Whether there is nothing at all between the separators, not even quotes.
  bool is_empty(std::size_t cell) const { return *text(cell) == '\0' && !is_in_quotes(cell); }
  // Whether the row has no quotes, and no blanks around cells. Then its cells, with a delimiter
  // between each two, are as they stand in the file.
  bool is_plain() const { return plain; }
  const csv_form& form() const;
  // How messages name the file.
  const std::string& file_name() const;
  // The line of the file, from 1, on which the row begins, and on which a cell of it begins.
  unsigned long long line() const { return first_line; }
  unsigned long long line_of(std::size_t cell) const;

 private:
  friend class csv_block;

  csv_row(const csv_block& of, std::size_t number);
  // Of an empty cell.
  bool is_in_quotes(std::size_t cell) const;

  const csv_block* block;
  const char* characters;
  const std::uint32_t* bounds;
  std::size_t cells;
  unsigned long long first_line;
  bool plain;
};

class csv_block {
 public:
  std::size_t rows() const { return starts.size(); }
  csv_row row(std::size_t number) const { return {*this, number}; }

  // The text of a cell that the row has.
  cell_text text(std::size_t row, std::size_t cell) const {
    const std::uint32_t* const bound = bounds.data() + starts[row].bound + cell;
    return {bytes.data() + bound[0], bound[1] - bound[0] - 1};
  }

  // Whether each row has this many cells.
  bool are_all_of(std::size_t cells) const {
    return std::all_of(starts.begin(), starts.end(),
                       [&](const row_start& start) { return start.cells == cells; });
  }

  // The number of the block in its table, from 0.
  std::size_t number() const { return place; }

  // How many lines before its last row, and since the block before it, are empty.
  std::size_t empty_lines() const { return skipped; }

  // Throws what is wrong with the file right after the last of the rows, if anything is. Blocks
  // after this one mean nothing then.
  void check_end() const {
    if (error) std::rethrow_exception(error);
  }
  bool has_error() const { return error != nullptr; }

  // Keeps only the rows for which keep(row) returns true. At a row for which it throws table_error
  // the block ends, and check_end throws that.
  template <class Keep>
  void keep_rows(Keep keep);

  // Leaves only the first cells of each row, this many.
  void drop_cells_after(std::size_t cells);

  // Makes this a block of no rows with an error, of this number.
  void refuse(std::size_t number, std::exception_ptr what);

 private:
  friend class csv_row;
  friend class block_reader;
  friend class row_division;

  // Cell c of a row begins at bounds[bound + c], and its NUL is right before bounds[bound + c + 1].
  struct row_start {
    std::uint32_t bound;
    std::uint32_t cells;
    std::uint32_t line;  // from first_line on
    bool plain;
  };

  std::size_t place = 0;
  std::shared_ptr<const std::string> file;
  csv_form form;
  unsigned long long first_line = 1;
  std::size_t length = 0;   // in bytes, as they are in the file
  std::vector<char> bytes;  // these, a NUL and enough to read some more
  std::vector<std::uint32_t> bounds;
  std::vector<row_start> starts;
  std::vector<std::uint32_t> quoted_empty_cells;  // where they begin, in ascending order
  std::size_t skipped = 0;
  std::exception_ptr error;
};

inline csv_row::csv_row(const csv_block& of, std::size_t number)
    : block(&of),
      characters(of.bytes.data()),
      bounds(of.bounds.data() + of.starts[number].bound),
      cells(of.starts[number].cells),
      first_line(of.first_line + of.starts[number].line),
      plain(of.starts[number].plain) {}

inline const csv_form& csv_row::form() const {
  return block->form;
}

inline const std::string& csv_row::file_name() const {
  return *block->file;
}

template <class Keep>
void csv_block::keep_rows(Keep keep) {
  std::size_t kept = 0;
  try {
    for (std::size_t i = 0; i < starts.size(); ++i) {
      if (keep(row(i))) starts[kept++] = starts[i];
    }
  } catch (const table_error&) {
    error = std::current_exception();
  }
  starts.resize(kept);
}

}  // namespace arbor::tree

#endif
