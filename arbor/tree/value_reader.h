// Reads the texts of an attribute in a file as values that the tests of a tree compare.
//
//   value_reader read(*tree.attributes[0]);
//   double value = read(row.cell(2));
#ifndef ARBOR_TREE_VALUE_READER_H
#define ARBOR_TREE_VALUE_READER_H

#include <cstddef>
#include <optional>
#include <vector>

#include "arbor/csv/cell_text.h"
#include "arbor/csv/number_form.h"
#include "arbor/model/column.h"
#include "arbor/table/cells/text_dictionary.h"
#include "arbor/table/decimal_domain.h"

namespace arbor::tree {

// The attribute must outlive it. A copy can be used by another thread.
class value_reader {
 public:
  // `form` is how the numbers of the file are written.
  explicit value_reader(const impls::column& attribute, number_form form = {});

  // See unknown_value for what a value is. A number of the type float is rounded, as it was when
  // the tree was grown. Of decimals it is the position on their scale, and between two integers it
  // is the lower one and a half, so that numbers of any length are compared exactly. A discrete
  // value that the attribute does not have is 0. A text that is no number, where the attribute has
  // numbers, is the unknown value.
  double operator()(cell_text text) { return is_continuous ? number(text) : code(text); }

  // The same for a text of a continuous attribute in the usual form, after whose end no bytes need
  // to be readable.
  double number(const char* text) const;

  // The same for a plain number of a continuous attribute.
  double number(plain_number plain) const;

 private:
  double number(cell_text text) const;
  double code(cell_text text);
  const impls::column* column;
  bool is_continuous;
  std::optional<decimal_scale> scale;  // of integers and decimals
  bool are_integers;                   // whose positions are the integers themselves
  double first_position;               // of the scale's first step
  number_form numbers;
  bool are_usual;
  // Texts of a discrete attribute that have been looked up, and the code of each. A look-up in the
  // domain takes many times as long.
  text_dictionary texts;
  std::vector<unsigned int> codes;
  std::size_t most_texts;
};

}  // namespace arbor::tree

#endif
