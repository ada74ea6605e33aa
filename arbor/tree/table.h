// A table in memory: its columns of codes, and its rows as weighted cases.
#ifndef ARBOR_TREE_TABLE_H
#define ARBOR_TREE_TABLE_H

#include <memory>
#include <string>
#include <vector>

#include "arbor/model/column.h"

namespace arbor::tree {

struct table {
  std::string name;                                     // of the file it was read from, as messages show it
  std::vector<std::unique_ptr<impls::column>> columns;  // in the order of the file, the class among them
  std::size_t class_index = 0;                          // which of the columns is the class
  impls::w_sequence cases;                              // every row, in the order of the file, with its weight
  float total_weight = 0;                               // of all cases
  std::vector<std::string> remarks;                     // what a person should know about how it was read, a line each

  impls::column& class_column() const { return *columns[class_index]; }
};

// The text of a code as it stood in the table; the text of an unknown value for code 0.
std::string value_text(const impls::column& column, unsigned int code);

// Whether a column is rated: neither the class nor the weights.
bool is_attribute(const impls::column& column);

// How many rows of a column hold the unknown value. A column without known values holds nothing else, though it keeps
// no rows of its own: `rows` is the number of rows of the table.
std::size_t unknown_cells(const impls::column& column, std::size_t rows);

}  // namespace arbor::tree

#endif
