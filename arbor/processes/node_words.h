// The nodes of a part of a growing tree as numbers that can be sent.
#ifndef ARBOR_PROCESSES_NODE_WORDS_H
#define ARBOR_PROCESSES_NODE_WORDS_H

#include <cstdint>
#include <cstring>
#include <vector>

#include "arbor/tree/growing/grown_nodes.h"

namespace arbor::tree {

// Appends a number of eight bytes to `words`, and reads such a number and moves `words` behind it.
template <class Number>
void put_number(Number number, std::vector<std::uint32_t>& words) {
  static_assert(sizeof number == 2 * sizeof words[0], "two words");
  words.resize(words.size() + 2);
  std::memcpy(words.data() + words.size() - 2, &number, sizeof number);
}
template <class Number>
Number take_number(const std::uint32_t*& words) {
  Number number;
  static_assert(sizeof number == 2 * sizeof *words, "two words");
  std::memcpy(&number, words, sizeof number);
  words += 2;
  return number;
}

// Appends the nodes to `words`.
void put_nodes(const grown_nodes& grown, std::vector<std::uint32_t>& words);

// Reads what put_nodes has appended, and moves `words` behind it.
grown_nodes take_nodes(const std::uint32_t*& words);

}  // namespace arbor::tree

#endif
