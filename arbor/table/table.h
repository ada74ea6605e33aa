// A table in memory: its columns of codes, and its rows as weighted cases.
#ifndef ARBOR_TABLE_TABLE_H
#define ARBOR_TABLE_TABLE_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "arbor/csv/input_remark.h"
#include "arbor/csv/number_form.h"
#include "arbor/model/column.h"

namespace arbor::tree {

// What a person should know about how a table was read.
struct table_remark {
  std::string text;  // of one line
  // Not empty: if certain texts of the table mean the unknown value, then it should be read again
  // with these unknown_texts (see load_options): those in use and these texts.
  std::vector<std::string> to_declare;
  // Not empty: the name of a column that should rather have the kind ignore or, if it is one of
  // floats that loses numbers, another data type.
  std::string column;
  bool loses_numbers = false;
  impls::column::_type kind = impls::column::IGNORE;  // of the column that loses numbers
  // Not empty: the table should be read again with the first of these forms of numbers, or with the
  // second one if a mark stands before decimals that the first one takes for a mark between groups.
  std::vector<number_form> to_read;
};

struct table {
  std::string name;  // of the file it was read from, as messages show it
  std::vector<std::unique_ptr<impls::column>> columns;  // in the order of the file
  std::size_t class_index = 0;                          // which of the columns is the class
  impls::w_sequence cases;  // every row, in the order of the file, with its weight
  float total_weight = 0;   // of all cases
  std::vector<input_remark> input_remarks;
  std::vector<table_remark> remarks;

  impls::column& class_column() const { return *columns[class_index]; }
};

// Whether a column is an attribute: neither the class nor the weights.
bool is_attribute(const impls::column& column);

// How many of the cases have the unknown value.
std::size_t unknown_cells(const impls::column& column, const impls::w_sequence& cases);

// The bounds [first, second) of the known codes that occur among the cases, (0, 0) when none do.
strata::util::pair<unsigned int, unsigned int> occurring_range(const impls::column& column,
                                                               const impls::w_sequence& cases);

// The sum of the cases' weights, added up in double so that many light ones are not lost in the
// rounding.
float total_weight(const impls::w_sequence& cases);

// The weight of each class among the cases, entry c that of the class with code c + 1, added up in
// the same way. The class of each case is known.
std::vector<float> class_weights(const impls::column& classes, const impls::w_sequence& cases);

// Adds the weights of the cases, one after the other, to those of the cases before them: entry c is
// that of the class with code c, entry 0 that of all.
void add_class_weights(const impls::column& classes, const impls::w_sequence& cases,
                       std::vector<double>& sums);

// What a report says of cases of a table.
struct case_summary {
  std::size_t rows = 0;
  std::size_t unknown_cells = 0;  // of all attributes
  float weight = 0;
  std::vector<float> class_weights;  // entry c is that of the class with code c + 1
};
case_summary summary_of(const table& summed, const impls::w_sequence& cases);

}  // namespace arbor::tree

#endif
