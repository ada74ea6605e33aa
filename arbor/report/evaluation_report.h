// How well a tree predicts, for a person.
#ifndef ARBOR_REPORT_EVALUATION_REPORT_H
#define ARBOR_REPORT_EVALUATION_REPORT_H

#include <string>

#include "arbor/tree/confusion_matrix.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// "errors on the 105 training cases: 3 (2.9%)", where "training" is `which_cases`. Both numbers are
// weights.
std::string error_line(const std::string& which_cases, const confusion_matrix& matrix);

// A line for each actual class and a column for each predicted class, with the weight of the cases.
// Only classes that occur in the matrix are shown; more than twenty are only counted.
std::string matrix_as_text(const decision_tree& tree, const confusion_matrix& matrix);

}  // namespace arbor::tree

#endif
