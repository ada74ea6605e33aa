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

// Returns a column of the same kind and name with only the rows of `cases`, in their order. Its
// domain passes every question on to that of `source`, or of the column that `source` itself was
// copied from: that domain must outlive the copy, `source` need not.
//
// `source` must be of one of the library's own classes (see is_library_column), and so is the copy:
// what a derived class overrides would be lost. Throws std::runtime_error if a code of these rows
// is not in the domain, which can happen with rows that were read from a record.
std::unique_ptr<column> extract_rows(const column& source, const w_sequence& cases);

}  // namespace arbor::impls

#endif
