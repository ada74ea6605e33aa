// What becomes of the numbers of a file in a float column: counts the cells whose numbers are
// rounded to others, and the distinct numbers that are lost because they are equal as float.
#ifndef ARBOR_TABLE_CELLS_FLOAT_MERGES_H
#define ARBOR_TABLE_CELLS_FLOAT_MERGES_H

#include <cstdint>
#include <vector>

#include "arbor/table/cells/column_cells.h"
#include "arbor/table/cells/plain_number.h"
#include "arbor/table/cells/text_dictionary.h"

namespace arbor::tree {

// How many distinct numbers there are beyond one for each code. `text_numbers` are the numbers of
// the dictionary's texts, entry i that of code i + 1.
//
// Of cells that are kept as numbers and have their codes, up to `distinct`, in `cells.keys()`.
std::size_t lost_numbers(column_cells& cells, const std::vector<double>& text_numbers,
                         std::size_t distinct);
// Of texts that have got the codes `codes`, entry c that of the text with code c.
std::size_t lost_texts(const text_dictionary& texts, const std::vector<double>& text_numbers,
                       const std::vector<unsigned int>& codes);

// In how many cells of a column of numbers the nearest float is shown as another number: in its
// fewest digits it is not what the cell says. `text_numbers` as above. Leaves out the first rows if
// they are the distinct cells, so many.
std::size_t rounded_cells(column_cells& cells, const std::vector<double>& text_numbers,
                          std::size_t distinct_rows = 0);

// Whether a number other than this one, read as `value`, may be the same float. Numbers of up to
// six significant digits are different floats, unless they are out of the range of full precision
// (std::numeric_limits<float>::digits10).
bool may_merge_as_float(const char* text, double value);
bool may_merge_as_float(plain_number number);

// A number of 64 bits for the decimal number that a text stands for: in one process the same for
// all ways to write it, and hardly ever that of another one, however many digits they have. Never
// 0.
std::uint64_t number_identity(const char* text);
std::uint64_t number_identity(plain_number number);

}  // namespace arbor::tree

#endif
