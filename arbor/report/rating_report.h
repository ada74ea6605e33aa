// The ratings of a table's attributes, for a person or for a program.
//
//   std::cout << table_line(golf, golf.cases) << "\n\n"
//             << ratings_as_text(golf.cases, rate_attributes(golf, golf.cases, 2));
//
// `cases` are always the ones that were rated: rows of the table with their weights, at least one.
#ifndef ARBOR_REPORT_RATING_REPORT_H
#define ARBOR_REPORT_RATING_REPORT_H

#include <string>
#include <vector>

#include "arbor/tree/rating.h"

namespace arbor::tree {

// One line: how many rows, attributes and unknown cells there are, and the weight of each class; of
// more than twenty classes only the heaviest.
std::string table_line(const table& described, const impls::w_sequence& cases);

// A line of headings and a line for each rating, aligned in columns, and a sentence that says how
// the attribute that a tree would test is found among them. Gains have six decimals.
std::string ratings_as_text(const impls::w_sequence& cases, const table_rating& ratings);

// Comma-separated values (RFC 4180, LF) with a row of names: attribute, kind, type, values, unknown
// (the share of rows, 0 to 1), gain, split_info, gain_ratio, branches, threshold, no_split,
// judged_gain. What does not apply is empty. Floats have their shortest form.
std::string ratings_as_csv(const impls::w_sequence& cases, const table_rating& ratings);

// One object {"table": {"name", "rows", "attributes", "unknown_cells", "weight", "class",
// "classes": [{"value", "weight"}]}, "ratings": [{"attribute", "kind", "type", "values", "unknown",
// "gain", "split_info", "gain_ratio", "branches", "threshold", "no_split", "judged_gain"}],
// "average_judged_gain", "chosen"}; what does not apply is null. "chosen" is the name of the
// attribute that a tree would test. Numbers read back to the same float. A threshold is a text.
// Bytes that are not UTF-8 become U+FFFD.
std::string ratings_as_json(const table& rated, const impls::w_sequence& cases,
                            const table_rating& ratings);

}  // namespace arbor::tree

#endif
