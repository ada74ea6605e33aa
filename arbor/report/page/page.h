// A page about a tree, for a browser: one HTML file that loads nothing from elsewhere.
//
//   write_page(file, tree, nullptr);
//
// The file has the tree as JSON, and a style and a script of its own, the only ones that its
// content security policy lets a browser use. Names and values are part of the JSON alone, except
// in the plain text for browsers without scripts; the script makes texts of them, never markup.
// The layout of the tree comes from d3-hierarchy, whose licence the page contains.
#ifndef ARBOR_REPORT_PAGE_PAGE_H
#define ARBOR_REPORT_PAGE_PAGE_H

#include <ostream>
#include <string>

#include "arbor/tree/decision_tree.h"
#include "arbor/tree/evaluation.h"
#include "arbor/tree/rating.h"

namespace arbor::tree {

// What a page says about a table: how well the tree predicts its rows, and the ratings of its
// attributes on them.
struct page_table {
  const std::string& name;
  const case_summary& cases;
  const evaluation& quality;
  const table_rating& ratings;
};

// Writes the page. Without a table, `of_table` is null and the page has only what the tree knows.
// Its size is in proportion to the tree and the ratings; each value and name stands in it once.
void write_page(std::ostream& out, const decision_tree& tree, const page_table* of_table);

}  // namespace arbor::tree

#endif
