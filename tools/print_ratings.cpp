#include "tools/print_ratings.h"

#include <iostream>

#include "arbor/report/rating_report.h"

namespace arbor::tools {

void print_ratings(const tree::table& rated, const impls::w_sequence& cases,
                   const tree::table_rating& ratings, const std::string& format) {
  if (format == "json") {
    std::cout << tree::ratings_as_json(rated, cases, ratings);
  } else if (format == "csv") {
    std::cerr << tree::table_line(rated, cases) << '\n';
    std::cout << tree::ratings_as_csv(cases, ratings);
  } else {
    std::cout << tree::table_line(rated, cases) << "\n\n" << tree::ratings_as_text(cases, ratings);
  }
}

}  // namespace arbor::tools
