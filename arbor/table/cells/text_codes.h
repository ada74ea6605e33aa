// Turns the cells of a column of texts into the values of its domain and the codes of its rows.
#ifndef ARBOR_TABLE_CELLS_TEXT_CODES_H
#define ARBOR_TABLE_CELLS_TEXT_CODES_H

#include "arbor/model/o_set.h"
#include "arbor/table/cells/column_cells.h"

namespace arbor::tree {

// Inserts the distinct texts, as to_domain_text makes them, into a domain of texts that has none
// yet, and leaves the codes that they have there, by row, in `cells.keys()`. The domain is not
// queried, so that destroying it still destroys its values.
void code_texts(column_cells& cells, impls::o_set& domain);

}  // namespace arbor::tree

#endif
