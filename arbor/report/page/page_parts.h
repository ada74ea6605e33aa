// What is the same in every page, made of tree.html, style.css and the scripts when the program is
// built; see embed.cmake.
#ifndef ARBOR_REPORT_PAGE_PAGE_PARTS_H
#define ARBOR_REPORT_PAGE_PAGE_PARTS_H

#include <string_view>

namespace arbor::tree {

// The tree's own parts stand between these.
struct page_template {
  std::string_view head;    // up to the title
  std::string_view body;    // up to the text for browsers without scripts
  std::string_view data;    // up to the JSON
  std::string_view script;  // up to the end
};
extern const page_template page_parts;

}  // namespace arbor::tree

#endif
