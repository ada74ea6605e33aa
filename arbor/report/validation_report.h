// The results of a cross-validation, for a person and as a table.
#ifndef ARBOR_REPORT_VALIDATION_REPORT_H
#define ARBOR_REPORT_VALIDATION_REPORT_H

#include <cstddef>
#include <ostream>
#include <vector>

#include "arbor/tree/validation/cross_validation.h"

namespace arbor::tree {

// Writes how many folds there are and how large their trees; with tuning, what was chosen in how
// many folds; the evaluation of all cases, see evaluation_report.h; and the importance of the
// attributes if it was asked for. `seconds` is how long it took. Names of more than `width` columns
// are shortened, see shown_text.h.
void write_validation_text(std::ostream& out, const table& rows, const validation_options& options,
                           const validation& result, double seconds, std::size_t width);

// Writes comma-separated values (RFC 4180, LF) with a row of names and a row for each fold: repeat,
// fold, cases (their weight), accuracy (0 to 1), log_loss (bits), brier, leaves, depth, min_weight,
// confidence (empty without pruning). Numbers have the shortest form that reads back to the same
// float.
void write_validation_csv(std::ostream& out, const validation& result);

// The columns of a table that are attributes, by their indices: the one whose permutation adds most
// to the log-loss first. Requires a validation with importance.
std::vector<std::size_t> columns_by_importance(const table& rows, const validation& result);

}  // namespace arbor::tree

#endif
