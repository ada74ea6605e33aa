// Values in the fewest digits that read back to the same value.
#ifndef ARBOR_TABLE_SHORTEST_TEXT_H
#define ARBOR_TABLE_SHORTEST_TEXT_H

#include <string>

#include "arbor/model/column.h"

namespace arbor::tree {

// 0.1F gives "0.1". Read back, the text gives the same float.
std::string shortest_text(float value);

// The text of a code's value. Domains print a float to thirty decimals, which are many and, for the
// smallest numbers, too few; this text is short and, looked up in the domain, gives the code again.
// Other values and codes that do not exist are as the domain prints them.
std::string shortest_value(const impls::column& column, unsigned int code);

// A threshold for a rated continuous split: the text of a value from the low code to below the high
// one. It is the one that find_threshold gives, unless that lies outside: the middle of
// neighbouring floats may round to the upper one, and the middle of a number and infinity is
// infinite. Then it is the low value.
std::string cut_threshold(const impls::column& column, const impls::column::splitting_desc& split);

}  // namespace arbor::tree

#endif
