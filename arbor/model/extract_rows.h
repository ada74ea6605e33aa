// Copies a few rows of a column into a column of their own, so that work on a part of the table
// does not read all over it. Internal to the library.
//
//   std::unique_ptr<column> part = extract_rows(*humidity, node_cases);
//   part->get_row_index(i);  // the code of the row of node_cases[i]
#ifndef ARBOR_MODEL_EXTRACT_ROWS_H
#define ARBOR_MODEL_EXTRACT_ROWS_H

#include <memory>

#include "arbor/model/column.h"

namespace arbor::impls {

// A column of the same kind and name with the rows of `cases` alone, in their order. Its domain
// passes every question on to that of `source`, or of the column that `source` itself was copied
// from: that domain must outlive it, `source` need not.
//
// `source` is of one of the library's own classes (see is_library_column), and so is the copy. What
// a derived class overrides would be lost. Throws std::runtime_error if a code of these rows is not
// in the domain, as rows that were read from a record may be.
std::unique_ptr<column> extract_rows(const column& source, const w_sequence& cases);

}  // namespace arbor::impls

#endif
