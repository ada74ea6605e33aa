// How well a tree predicts, for a person.
#ifndef ARBOR_REPORT_EVALUATION_REPORT_H
#define ARBOR_REPORT_EVALUATION_REPORT_H

#include <string>

#include "arbor/tree/decision_tree.h"
#include "arbor/tree/evaluation.h"

namespace arbor::tree {

// "errors on the 105 training cases: 3 (2.9%)", where "training" is `which_cases`. Both numbers are
// weights.
std::string error_line(const std::string& which_cases, const confusion_matrix& matrix);

// The error line and the other figures of an evaluation; a table of how well each class is
// predicted, of more than twenty classes only the heaviest; and the confusions, see
// confusion_report.h. `classes` is the class column.
std::string evaluation_as_text(const std::string& which_cases, const impls::column& classes,
                               const evaluation& quality);

}  // namespace arbor::tree

#endif
