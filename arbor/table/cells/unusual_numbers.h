// Finds out whether the texts of a column are numbers that are written in another form than the one
// in use: with "%", a currency, groups of digits or a decimal comma.
//
//   for (const number_form& form : unusual_forms(cells, "$1,234.50", options.numbers)) ...
#ifndef ARBOR_TABLE_CELLS_UNUSUAL_NUMBERS_H
#define ARBOR_TABLE_CELLS_UNUSUAL_NUMBERS_H

#include <string>
#include <vector>

#include "arbor/csv/number_form.h"
#include "arbor/table/cells/column_cells.h"

namespace arbor::tree {

// The forms in which all cells of a column are numbers; none, one, or two that differ in the mark
// before the decimals and give other numbers. `sample` is a text of the column that is no number in
// the form in use. Each form strips what that one does and the "%" or currency of the sample. Stops
// at the first text that is no number.
std::vector<number_form> unusual_forms(column_cells& cells, const std::string& sample,
                                       const number_form& in_use);

}  // namespace arbor::tree

#endif
