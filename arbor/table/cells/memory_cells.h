// Adds the rows of a column in memory to the cells of a column, as if they had been read from the
// file that they would be written to.
//
//   memory_cells source(column);
//   source.add_to(cells, 0, 1000);
#ifndef ARBOR_TABLE_CELLS_MEMORY_CELLS_H
#define ARBOR_TABLE_CELLS_MEMORY_CELLS_H

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "arbor/table/cells/column_cells.h"
#include "arbor/table/cells/shortest_digits.h"
#include "arbor/table/memory_column.h"

namespace arbor::tree {

// The plain number of a number in memory; none if its text is needed or it is not a number.
inline plain_number plain_number_in(double number, shortest_digits& digits) {
  return digits.of(number);
}
inline plain_number plain_number_in(float number, shortest_digits& digits) {
  return digits.of(number);
}
template <class Integer>
plain_number plain_number_in(Integer number, shortest_digits& /*digits*/) {
  constexpr auto end = static_cast<std::int64_t>(plain_digits_end);
  if constexpr (sizeof number == sizeof end) {
    const bool is_large = number >= static_cast<Integer>(end) ||
                          (Integer(-1) < Integer(0) && number <= static_cast<Integer>(-end));
    if (is_large) return no_plain_number;
  }
  return plain_number_of(static_cast<std::int64_t>(number), 0);
}

// The text of a number as a file has it.
template <class Number>
std::string file_text(Number number) {
  if constexpr (std::is_floating_point_v<Number>) {
    return shortest_number_text(number);
  } else {
    return std::to_string(number);
  }
}

// A text in memory as the cell that is read from a file: without the blanks around it, unless it
// has characters for which files put it in quotes. None if it stands for the unknown value.
// Throws std::runtime_error for a text with a zero byte, which no file may have.
std::optional<std::string> cell_of(std::string_view text);

class memory_cells {
 public:
  // The column must outlive this object.
  explicit memory_cells(const memory_column& of_column);

  // Adds the rows from `first` to before `end`.
  void add_to(column_cells& cells, std::size_t first, std::size_t end);

  // The first of these rows that has the text; it is a cell of one of them.
  std::size_t row_with(std::string_view text, std::size_t first, std::size_t end) const;
  // The first row, of all, whose value is unknown; one of them is.
  std::size_t first_unknown() const;

 private:
  // Which of the texts the row has; their number for the unknown value.
  std::size_t text_of(std::size_t row) const;
  void add_texts(column_cells& cells, std::size_t first, std::size_t end);

  const memory_column& column;
  std::vector<std::optional<std::string>> texts;
  std::vector<unsigned int> codes;  // of the texts that are in the dictionary of the cells, else 0
  shortest_digits digits;
};

}  // namespace arbor::tree

#endif
