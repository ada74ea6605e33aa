// How much each attribute contributes to a tree.
#ifndef ARBOR_TREE_ATTRIBUTE_IMPORTANCE_H
#define ARBOR_TREE_ATTRIBUTE_IMPORTANCE_H

#include <vector>

#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// By attribute of the tree, in bits per training case: the entropy of the classes at each node that
// tests the attribute, less the mean of that at the node's children, times the node's part of all
// cases. Over all attributes this adds up to what the tree tells about its training cases. The
// entropies are those of the class weights, so cases with an unknown value count in all branches
// with the weight that they have there. L. Breiman et al., Classification and Regression Trees
// (1984), section 5.3.4, without the surrogate splits.
std::vector<double> importance_of_attributes(const decision_tree& tree);

}  // namespace arbor::tree

#endif
