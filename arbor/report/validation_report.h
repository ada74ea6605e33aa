// The results of a cross-validation, for a person or for a program.
#ifndef ARBOR_REPORT_VALIDATION_REPORT_H
#define ARBOR_REPORT_VALIDATION_REPORT_H

#include <string>

#include "arbor/tree/cross_validation.h"

namespace arbor::tree {

// How many folds there are and how large their trees, and the evaluation of all cases, see
// evaluation_report.h. `seconds` is how long it took.
std::string validation_as_text(const table& rows, const validation_options& options,
                               const validation& result, double seconds);

// Comma-separated values (RFC 4180, LF) with a row of names and a row for each fold: repeat, fold,
// cases (their weight), accuracy (0 to 1), log_loss (bits), brier, leaves, depth. Numbers have the
// shortest form that reads back to the same float.
std::string validation_as_csv(const validation& result);

// One object {"table", "rows", "class", "options": {"folds", "repeats", "seed", "min_weight",
// "max_depth", "confidence"}, "seconds", "cases", "accuracy", "accuracy_error", "log_loss",
// "brier", "commonest_class_error", "leaves", "depth", "classes": [{"class", "cases", "predicted",
// "precision", "recall", "f1"}], "confusion_matrix": [{"actual", "predicted", "weight"}], "folds":
// [{the names of the CSV}]}. Errors are shares (0 to 1), and cases are weights. Precision is null
// for a class that is never predicted, recall for one that has no cases; so are the greatest depth
// without a limit, and the confidence without pruning. Pairs that do not occur are left out of the
// confusion matrix. Numbers read back to the same double.
std::string validation_as_json(const table& rows, const validation_options& options,
                               const validation& result, double seconds);

}  // namespace arbor::tree

#endif
