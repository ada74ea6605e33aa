// Which classes are taken for which others, for a person.
#ifndef ARBOR_REPORT_CONFUSION_REPORT_H
#define ARBOR_REPORT_CONFUSION_REPORT_H

#include <string>

#include "arbor/model/column.h"
#include "arbor/tree/confusion_matrix.h"

namespace arbor::tree {

// A line for each actual class and a column for each predicted class, with the weight of the cases.
// Only classes that occur in the matrix are shown. Where their names would make it wider than 100
// columns, letters stand for them, which the lines explain. Long names are shortened. Instead of
// more than twenty classes, the twenty heaviest pairs of an actual class and another predicted one
// are listed.
//
// `classes` is the class column. The entry after its last class is for all others: "(another)".
std::string confusions_as_text(const impls::column& classes, const confusion_matrix& matrix);

}  // namespace arbor::tree

#endif
