#include "tools/print_ratings.h"

#include <iostream>

#include "arbor/report/rating_report.h"
#include "tools/terminal.h"

namespace arbor::tools {

void print_ratings(const tree::table& rated, const tree::case_summary& cases,
                   const tree::table_rating& ratings, const std::string& format) {
  if (format == "json") {
    tree::write_ratings_json(std::cout, rated, cases, ratings);
  } else if (format == "csv") {
    std::cerr << tree::table_line(rated, cases, text_width()) << '\n';
    tree::write_ratings_csv(std::cout, cases, ratings);
  } else {
    std::cout << tree::table_line(rated, cases, text_width()) << "\n\n";
    tree::write_ratings_text(std::cout, cases, ratings, text_width());
  }
}

}  // namespace arbor::tools
