// A tree as a function in Python.
#ifndef ARBOR_REPORT_EXPORTS_PYTHON_EXPORT_H
#define ARBOR_REPORT_EXPORTS_PYTHON_EXPORT_H

#include <ostream>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Writes a module of Python 3.6 or later that needs its standard library alone. Its function
// predict(case) takes a dictionary and returns the class and the probabilities of
// class_probabilities, smoothed, to the bit. Bytes of a value that are not UTF-8 are those that the
// error handler "surrogateescape" makes of them.
void write_python(std::ostream& out, const decision_tree& tree);

}  // namespace arbor::tree

#endif
