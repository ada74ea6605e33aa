// Numbers in the fewest digits that read back to the same value.
#ifndef ARBOR_TREE_SHORTEST_TEXT_H
#define ARBOR_TREE_SHORTEST_TEXT_H

#include <string>

#include "arbor/model/column.h"

namespace arbor::tree {

// 0.1F gives "0.1". Read back, the text gives the same float.
std::string shortest_text(float value);

// The threshold text of a continuous column, as its domain prints it, in the shortest form: for a float domain that of
// its float; integers are short as they are.
std::string shortest_threshold(const impls::column& column, const std::string& threshold);

}  // namespace arbor::tree

#endif
