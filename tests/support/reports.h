// Reports as texts: every form of a tree, of a table's ratings and of a validation.
#ifndef ARBOR_TESTS_SUPPORT_REPORTS_H
#define ARBOR_TESTS_SUPPORT_REPORTS_H

#include <sstream>
#include <string>

#include "arbor/report/exports/c_export.h"
#include "arbor/report/exports/pmml_export.h"
#include "arbor/report/exports/python_export.h"
#include "arbor/report/exports/rules_export.h"
#include "arbor/report/exports/sql_export.h"
#include "arbor/report/rating_report.h"
#include "arbor/report/tree_graph.h"
#include "arbor/report/tree_json.h"
#include "arbor/report/tree_report.h"
#include "arbor/report/validation_json.h"
#include "arbor/report/validation_report.h"

namespace arbor::tests {

// What write(stream) writes. Throws what it throws.
template <class Write>
std::string written(Write write) {
  std::ostringstream out;
  out.exceptions(std::ios::badbit);  // a stream would keep to itself what is thrown
  write(out);
  return out.str();
}

inline std::string text_of(const tree::decision_tree& t, const tree::tree_excerpt& excerpt = {}) {
  return written([&](std::ostream& out) { tree::write_tree_text(out, t, excerpt, 60); });
}

inline void write_reports(std::ostream& out, const tree::decision_tree& t) {
  out << tree::description(t, 60);
  tree::write_tree_text(out, t, tree::excerpt_of_lines(t, 3), 60);
  tree::write_tree_text(out, t, {}, 20);
  tree::write_importance(out, t, 60);
  tree::write_tree_dot(out, t, 3);
  tree::write_tree_dot(out, t, tree::whole_depth);
  tree::write_tree_json(out, t);
  tree::write_rules(out, t, 60);
}

// Not those of a person: texts in SQL are as they are.
inline void write_exports(std::ostream& out, const tree::decision_tree& t) {
  tree::write_c(out, t);
  tree::write_python(out, t);
  tree::write_pmml(out, t, "1");
  tree::write_sql(out, t);
}

inline void write_reports(std::ostream& out, const tree::table& rows,
                          const tree::table_rating& ratings) {
  const tree::case_summary cases = tree::summary_of(rows, rows.cases);
  out << tree::table_line(rows, cases, 60);
  tree::write_ratings_text(out, cases, ratings, 60);
  tree::write_ratings_csv(out, cases, ratings);
  tree::write_ratings_json(out, rows, cases, ratings);
}

inline void write_reports(std::ostream& out, const tree::table& rows,
                          const tree::validation_options& options, const tree::validation& result) {
  tree::write_validation_text(out, rows, options, result, 0, 60);
  tree::write_validation_csv(out, result);
  tree::write_validation_json(out, rows, options, result, 0);
}

// All reports on these things, one after the other.
template <class... Reported>
std::string reports_of(const Reported&... reported) {
  return written([&](std::ostream& out) { write_reports(out, reported...); });
}

}  // namespace arbor::tests

#endif
