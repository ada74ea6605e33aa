// A tree in PMML, the Predictive Model Markup Language, for programs that apply models.
#ifndef ARBOR_REPORT_EXPORTS_PMML_EXPORT_H
#define ARBOR_REPORT_EXPORTS_PMML_EXPORT_H

#include <ostream>
#include <string>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Writes a TreeModel of PMML 4.4. `version` is that of the program, which the header names. The
// probabilities of a node are the smoothed ones; of more than twenty classes it lists only those
// that occur there and the predicted one. Characters that XML cannot have are \xNN, as in a text
// for a person. Throws std::runtime_error if a name or a value has more than a thousand bytes.
void write_pmml(std::ostream& out, const decision_tree& tree, const std::string& version);

}  // namespace arbor::tree

#endif
