// The ratings of a table's attributes, for a person or for a program.
//
//   const case_summary cases = summary_of(golf, golf.cases);
//   std::cout << table_line(golf, cases, 60) << "\n\n";
//   write_ratings_text(std::cout, cases, rate_attributes(golf, golf.cases, 2), 60);
//
// `cases` are always the ones that were rated: rows of the table with their weights, at least one.
// Names and values of more than `width` columns are shortened, see shown_text.h.
#ifndef ARBOR_REPORT_RATING_REPORT_H
#define ARBOR_REPORT_RATING_REPORT_H

#include <cstddef>
#include <ostream>
#include <string>

#include "arbor/tree/rating.h"

namespace arbor::tree {

// One line: how many rows, attributes and unknown cells there are, and the weight of each class; of
// more than twenty classes only the heaviest.
std::string table_line(const table& described, const case_summary& cases, std::size_t width);

// Writes a line of headings and a line for each rating, aligned in columns, and a sentence that
// says how the attribute that a tree would test is found among them. Gains have six decimals.
void write_ratings_text(std::ostream& out, const case_summary& cases, const table_rating& ratings,
                        std::size_t width);

// Writes comma-separated values (RFC 4180, LF) with a row of names: attribute, kind, type, values,
// unknown (the share of rows, 0 to 1), gain, split_info, gain_ratio, branches, threshold, no_split,
// judged_gain. What does not apply is empty. Floats have their shortest form.
void write_ratings_csv(std::ostream& out, const case_summary& cases, const table_rating& ratings);

// Writes one object {"format", "version", "table": {"name", "rows", "attributes", "unknown_cells",
// "weight", "class", "classes": [{"value", "weight"}]}, "ratings": [{"attribute", "kind", "type",
// "values", "unknown", "gain", "split_info", "gain_ratio", "branches", "threshold", "no_split",
// "judged_gain"}], "average_judged_gain", "chosen"}; what does not apply is null. "chosen" is the
// name of the attribute that a tree would test. Numbers read back to the same float. A threshold is
// a text. See json_writer.h for texts.
void write_ratings_json(std::ostream& out, const table& rated, const case_summary& cases,
                        const table_rating& ratings);

}  // namespace arbor::tree

#endif
