// What the script of a page knows about a tree, as JSON inside HTML.
#ifndef ARBOR_REPORT_PAGE_PAGE_DATA_H
#define ARBOR_REPORT_PAGE_PAGE_DATA_H

#include <ostream>

#include "arbor/report/page/page.h"

namespace arbor::tree {

// Writes one object without "<", ">" and "&", so that no text in it ends the element around it. All
// texts are printable; see shown_text.h. The nodes are lists of numbers, an entry for each node:
//
//   "attribute"  that is tested, as an index, -1 for a leaf
//   "first", "count"  the children are `count` nodes from `first` on
//   "branch"     that leads to the node: of a discrete attribute an index in the list of its values
//                that occur, else 0 up to the threshold and 1 above it
//   "predicted"  the class, as an index
//   "sizes"      how many classes occur; "entries" and "weights" then have, one node after the
//                other, the index of each of them and its weight
//   "thresholds" only of tests of continuous attributes, as texts
void write_page_data(std::ostream& out, const decision_tree& tree, const page_table* of_table);

}  // namespace arbor::tree

#endif
