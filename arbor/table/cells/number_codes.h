// Turns the cells of a column of numbers into the values of its domain and the codes of its rows.
#ifndef ARBOR_TABLE_CELLS_NUMBER_CODES_H
#define ARBOR_TABLE_CELLS_NUMBER_CODES_H

#include <vector>

#include "arbor/model/o_set.h"
#include "arbor/table/cells/column_cells.h"

namespace arbor::tree {

// Inserts the distinct numbers into a domain of numbers that has none yet, and leaves the codes
// that they have there, by row, in `cells.keys()`. Of equal numbers the first one in the order of
// the rows is inserted. The domain is not queried, so that destroying it still destroys its values.
//
// All cells are of the domain's data type. `text_numbers` are the numbers of the dictionary's
// texts, entry i that of code i + 1.
//
// Returns how many distinct numbers are lost because they are equal to others as float; 0 for other
// data types.
std::size_t code_numbers(column_cells& cells, const std::vector<double>& text_numbers,
                         impls::o_set& domain);

}  // namespace arbor::tree

#endif
