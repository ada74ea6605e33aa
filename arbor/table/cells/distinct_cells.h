// The distinct cells of a column in a part of a table's rows. Processes that share out the rows
// send them to each other, and all get those of the whole table.
//
//   distinct_cells all = distinct_ones(cells, false);
//   add_later(all, read_distinct_cells(bytes));   // of the rows after those
#ifndef ARBOR_TABLE_CELLS_DISTINCT_CELLS_H
#define ARBOR_TABLE_CELLS_DISTINCT_CELLS_H

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "arbor/table/cells/column_cells.h"
#include "arbor/table/cells/number_set.h"
#include "arbor/table/cells/text_dictionary.h"

namespace arbor::tree {

struct distinct_cells {
  static constexpr std::uint32_t no_zero = std::numeric_limits<std::uint32_t>::max();

  number_set numbers;
  // The others, and declared values, in the order in which they first occur.
  text_dictionary texts;
  // Of all rows of the part.
  cell_counts counts;
  // How many of the texts occur before the first plain number that is zero. Of equal numbers the
  // first one becomes the value, and a text may be a negative zero.
  std::uint32_t texts_before_zero = no_zero;

  // How many rows these are. One is unknown, if one of the cells is.
  std::size_t rows() const {
    return numbers.size() + texts.size() + (counts.unknown > 0 ? 1U : 0U);
  }
};

// Those of a column's cells. `with_numbers` says that the column has plain numbers in this part or
// another one. Then no text is a plain number.
distinct_cells distinct_ones(column_cells& cells, bool with_numbers);

// Adds the cells of later rows.
void add_later(distinct_cells& cells, const distinct_cells& later);

// Appends the cells as bytes: of the numbers their bits, of each text its count and characters.
void append_bytes(const distinct_cells& cells, std::vector<char>& to);

// Reads what append_bytes has written at `next`, and moves `next` behind it. Eight more bytes must
// be readable.
distinct_cells read_distinct_cells(const char*& next);

}  // namespace arbor::tree

#endif
