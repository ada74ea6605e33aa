// The results of a cross-validation as JSON, for programs.
#ifndef ARBOR_REPORT_VALIDATION_JSON_H
#define ARBOR_REPORT_VALIDATION_JSON_H

#include <ostream>

#include "arbor/tree/validation/cross_validation.h"

namespace arbor::tree {

// Writes one object {"format", "version", "table", "rows", "class", "options": {"folds", "repeats",
// "seed", "tune", "min_weight", "max_depth", "confidence"}, "seconds", "cases", "accuracy",
// "accuracy_error", "log_loss", "brier", "commonest_class_error", "leaves", "depth", "classes":
// [{"class", "cases", "predicted", "precision", "recall", "f1"}], "confusion_matrix": [{"actual",
// "predicted", "weight"}], "importance": [{"attribute", "trees", "log_loss", "accuracy"}], "folds":
// [{"repeat", "fold", "cases", "accuracy", "log_loss", "brier", "leaves", "depth", "min_weight",
// "confidence"}]}.
//
// Errors are shares (0 to 1), cases are weights, and losses are in bits. Pairs that do not occur
// are left out of the confusion matrix. These are null: precision for a class that is never
// predicted, recall for one without cases, the greatest depth without a limit, the confidence
// without pruning, what tuning chooses among the options, and an importance that was not asked for.
// Numbers read back to the same double; see json_writer.h for texts.
//
// A class of more than 200 bytes is not repeated in the confusion matrix: it has the index in a
// list "long_texts" instead, which only stands at the end where there are any.
void write_validation_json(std::ostream& out, const table& rows, const validation_options& options,
                           const validation& result, double seconds);

}  // namespace arbor::tree

#endif
