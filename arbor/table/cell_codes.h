// Turns the cells of a column into the values of its domain and the codes of its rows.
#ifndef ARBOR_TABLE_CELL_CODES_H
#define ARBOR_TABLE_CELL_CODES_H

#include "arbor/model/o_set.h"
#include "arbor/table/column_cells.h"

namespace arbor::tree {

// Each inserts the distinct known values into a domain that has none yet and leaves the codes that
// these have there, by row, in `cells.keys()`. The domain is not asked, so that it can still be
// destroyed with all it holds.

// For a domain of texts, which are kept there as to_domain_text makes them.
void code_texts(column_cells& cells, impls::o_set& domain);

// For a domain of integers, and cells of the forms `integers` and `numbers` all of which are
// integers.
void code_integers(column_cells& cells, impls::o_set& domain);

// For a domain of floats, and cells of these forms all of which are numbers. Returns how many
// distinct numbers are lost because they are equal to others as float.
std::size_t code_floats(column_cells& cells, impls::o_set& domain);

// The way that serves all data types, in two steps: the domain reads the text of each distinct
// cell, first to insert it and then to look it up.
void insert_texts(column_cells& cells, impls::o_set& domain);
void look_up_codes(column_cells& cells, impls::o_set& domain);

// How many distinct numbers such a column of floats has lost.
std::size_t lost_as_float(const column_cells& cells, impls::o_set& domain);

}  // namespace arbor::tree

#endif
