// A tree as a function in C.
#ifndef ARBOR_REPORT_EXPORTS_C_EXPORT_H
#define ARBOR_REPORT_EXPORTS_C_EXPORT_H

#include <ostream>
#include <string>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Writes a source file of C99, which is C++ too and needs the standard library alone: a structure
// of a case, named after the class column, and a function that predicts its class and gives the
// probabilities of class_probabilities, smoothed, to the bit. The tree is in tables that a loop
// reads, because compilers take no deep nesting. Names that are no identifiers are changed until
// they are, and differ.
void write_c(std::ostream& out, const decision_tree& tree);

}  // namespace arbor::tree

#endif
