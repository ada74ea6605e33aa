// A tree as rules that a person can follow.
#ifndef ARBOR_REPORT_EXPORTS_RULES_EXPORT_H
#define ARBOR_REPORT_EXPORTS_RULES_EXPORT_H

#include <cstddef>
#include <ostream>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// Writes a line for each leaf, in the order of the tree's text: its conditions, the class, and in
// brackets the weight of its training cases and after a slash the weight of those of other classes.
// All tests of a number are one range:
//
//   if outlook = sunny and 65 < humidity <= 75 then yes (2), probability 0.836
//
// After more than 32 conditions a line ends at a test instead: "then go to [57]", and its rules,
// "if at [57] and ...", follow. Names and values of more than `width` columns are shortened, see
// shown_text.h.
void write_rules(std::ostream& out, const decision_tree& tree, std::size_t width);

}  // namespace arbor::tree

#endif
