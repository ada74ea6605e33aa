// Ratings of attributes on standard output.
#ifndef ARBOR_TOOLS_PRINT_RATINGS_H
#define ARBOR_TOOLS_PRINT_RATINGS_H

#include <string>
#include <vector>

#include "arbor/tree/rating.h"

namespace arbor::tools {

// Prints the ratings of `cases`, rows of `rated`, in a format: text, csv or json. As CSV has no
// place for it, the line about the table is printed on standard error then.
void print_ratings(const tree::table& rated, const tree::case_summary& cases,
                   const tree::table_rating& ratings, const std::string& format);

}  // namespace arbor::tools

#endif
