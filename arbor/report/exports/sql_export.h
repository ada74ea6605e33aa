// A tree as an expression in SQL.
#ifndef ARBOR_REPORT_EXPORTS_SQL_EXPORT_H
#define ARBOR_REPORT_EXPORTS_SQL_EXPORT_H

#include <ostream>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Writes an expression over the columns of a table that have the names of the attributes, in the
// SQL that SQLite and PostgreSQL share, after lines of comment. Its value is the predicted class.
//
// A CASE has a WHEN for each leaf (path_rules.h; a rule that ends at a test has a CASE inside). A
// row that none of them fits has a value that is unknown or new to a test: a subquery sends it down
// every branch and adds up the smoothed probabilities. Throws std::runtime_error if a name or a
// value has more than a thousand bytes.
void write_sql(std::ostream& out, const decision_tree& tree);

}  // namespace arbor::tree

#endif
