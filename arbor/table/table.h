// A table in memory: its columns of codes, and its rows as weighted cases.
#ifndef ARBOR_TABLE_TABLE_H
#define ARBOR_TABLE_TABLE_H

#include <memory>
#include <string>
#include <vector>

#include "arbor/model/column.h"

namespace arbor::tree {

struct table {
  std::string name;  // of the file it was read from, as messages show it
  std::vector<std::unique_ptr<impls::column>>
      columns;                       // in the order of the file, the class among them
  std::size_t class_index = 0;       // which of the columns is the class
  impls::w_sequence cases;           // every row, in the order of the file, with its weight
  float total_weight = 0;            // of all cases
  std::vector<std::string> remarks;  // what a person should know about how it was read, a line each

  impls::column& class_column() const { return *columns[class_index]; }
};

// The text of a code: of a text as it stood in the table, of a number the shortest; that of an
// unknown value for code 0.
std::string value_text(const impls::column& column, unsigned int code);

// The reverse, for a text as it stands in a table: whether the column's domain holds it, setting
// `code` then. Throws std::runtime_error for a text that is not of the data type.
bool code_of_text(const impls::column& column, const char* text, unsigned int& code);

// Whether a column is rated: neither the class nor the weights.
bool is_attribute(const impls::column& column);

// In how many of the cases the value is unknown.
std::size_t unknown_cells(const impls::column& column, const impls::w_sequence& cases);

// The bounds [first, second) of the known codes among cases, (0, 0) when there are none.
strata::util::pair<unsigned int, unsigned int> occurring_range(const impls::column& column,
                                                               const impls::w_sequence& cases);

// The sum of the cases' weights, added up in double so that many light ones count for what they
// are.
float total_weight(const impls::w_sequence& cases);

// The weight of each class among cases of a table, entry c that of the class with code c + 1;
// likewise added up.
std::vector<float> class_weights(const impls::column& classes, const impls::w_sequence& cases);

}  // namespace arbor::tree

#endif
