// Keys: 32-bit numbers that sort like the values of a column, and the ranks of a column's keys.
//
//   cell_blocks<std::uint32_t> keys;   // of 7.5, the unknown value and 3
//   std::vector<std::uint32_t> distinct = rank_keys(keys);   // keys are 2, 0, 1 now
#ifndef ARBOR_TABLE_CELLS_KEY_RANKS_H
#define ARBOR_TABLE_CELLS_KEY_RANKS_H

#include <cstdint>
#include <cstring>
#include <vector>

#include "arbor/table/cells/cell_blocks.h"

namespace arbor::tree {

// A greater value has a greater key. 0 is the key of the unknown value.
constexpr std::uint32_t unknown_key = 0;

// For all integers but the least one, whose key would be 0.
inline std::uint32_t key_of(int value) {
  return static_cast<std::uint32_t>(value) ^ 0x80000000U;
}
inline int integer_of(std::uint32_t key) {
  return static_cast<int>(key ^ 0x80000000U);
}

// For all floats but not-a-numbers. The key of -0 comes just before that of 0.
constexpr std::uint32_t zero_key = 0x80000000U;
constexpr std::uint32_t negative_zero_key = zero_key - 1;
inline std::uint32_t key_of(float value) {
  std::uint32_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return (bits & 0x80000000U) != 0 ? ~bits : bits | 0x80000000U;
}
inline float float_of(std::uint32_t key) {
  const std::uint32_t bits = (key & 0x80000000U) != 0 ? key ^ 0x80000000U : ~key;
  float value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

// Replaces each key but that of the unknown value by its rank among the distinct ones, from 1 on.
// Returns the distinct keys in ascending order, without that of the unknown value.
std::vector<std::uint32_t> rank_keys(cell_blocks<std::uint32_t>& keys);

// The distinct keys in the same order. The keys stay as they are.
std::vector<std::uint32_t> distinct_keys(cell_blocks<std::uint32_t>& keys);

}  // namespace arbor::tree

#endif
