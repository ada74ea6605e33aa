// The nodes of a part of a growing tree as numbers that can be sent.
#ifndef ARBOR_PROCESSES_NODE_WORDS_H
#define ARBOR_PROCESSES_NODE_WORDS_H

#include <cstdint>
#include <vector>

#include "arbor/tree/growing/grown_nodes.h"

namespace arbor::tree {

// Appends the nodes to `words`.
void put_nodes(const grown_nodes& grown, std::vector<std::uint32_t>& words);

// Reads what put_nodes has appended, and moves `words` behind it.
grown_nodes take_nodes(const std::uint32_t*& words);

}  // namespace arbor::tree

#endif
