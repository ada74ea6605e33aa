#include "arbor/report/page/page.h"

#include <sstream>

#include "arbor/csv/shown_text.h"
#include "arbor/report/page/page_data.h"
#include "arbor/report/page/page_parts.h"
#include "arbor/report/tree_report.h"
#include "arbor/store/present_file.h"

namespace arbor::tree {

namespace {

std::string as_html(std::string_view text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '&':
        html += "&amp;";
        break;
      case '"':
        html += "&quot;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

// The first levels of the tree and the importance of its attributes, for a browser that runs no
// scripts.
std::string first_levels(const decision_tree& tree) {
  constexpr std::size_t most_lines = 40;
  constexpr std::size_t width = 60;
  std::ostringstream text;
  text.exceptions(std::ios::badbit);  // out of memory
  text << description(tree, width) << '\n';
  write_tree_text(text, tree, excerpt_of_lines(tree, most_lines), width);
  return text.str();
}

}  // namespace

void write_page(std::ostream& out, const decision_tree& tree, const page_table* of_table) {
  constexpr std::size_t width = 60;
  out << page_beginning << page_parts.head
      << as_html("Decision tree for " + in_quotes(tree.class_column->get_name(), width))
      << page_parts.body << as_html(first_levels(tree)) << page_parts.data;
  write_page_data(out, tree, of_table);
  out << page_parts.script;
}

}  // namespace arbor::tree
