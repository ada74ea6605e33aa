// The way from the root to each leaf of a tree, as conditions on its attributes.
//
//   for_each_rule(tree, [&](const path_rule& rule) { write(rule.conditions, rule.node); });
#ifndef ARBOR_REPORT_EXPORTS_PATH_RULES_H
#define ARBOR_REPORT_EXPORTS_PATH_RULES_H

#include <cstddef>
#include <functional>
#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// What all tests of one attribute on a way require together.
struct path_condition {
  unsigned int attribute;
  unsigned int value = 0;  // the code of the only value; 0 for a continuous attribute
  // The codes of thresholds: the greatest that the number is above, the least that it is up to.
  // 0: there is none.
  unsigned int above = 0;
  unsigned int up_to = 0;
};

// Cases at the node `start` that fulfil the conditions come to `node`. The conditions are in the
// order in which the attributes are first tested.
struct path_rule {
  std::size_t start;  // 0, the root, where all cases are, or the `node` of an earlier rule
  std::vector<path_condition> conditions;
  std::size_t node;  // a leaf, or a test from which other rules start
};

// Visits the rules of all leaves in the order in which the text of a tree has the leaves. A rule
// has at most `most_conditions` conditions: where there would be more, those so far are a rule of
// their own that ends at a test, and rules that start there follow. So the rules of all leaves
// together are in proportion to the tree, however deep it is. Ways that no case with known values
// can go are left out.
constexpr std::size_t most_conditions = 32;
void for_each_rule(const decision_tree& tree, const std::function<void(const path_rule&)>& visit);

}  // namespace arbor::tree

#endif
