// Puts the distinct numbers among the keys of a column's rows in order.
#ifndef ARBOR_TABLE_KEY_RANKS_H
#define ARBOR_TABLE_KEY_RANKS_H

#include <cstdint>
#include <cstring>
#include <vector>

#include "arbor/table/cell_blocks.h"

namespace arbor::tree {

// Keys are numbers in the order of the values that they stand for; 0 is the key of the unknown
// value.
constexpr std::uint32_t unknown_key = 0;

// Of all integers but the least one.
inline std::uint32_t key_of(int value) {
  return static_cast<std::uint32_t>(value) ^ 0x80000000U;
}
inline int integer_of(std::uint32_t key) {
  return static_cast<int>(key ^ 0x80000000U);
}

// Of all floats but those that are not numbers; that of -0 comes just before that of 0.
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

// Replaces each key but that of the unknown value by its rank among the distinct ones, from 1 on,
// and returns these in ascending order.
std::vector<std::uint32_t> rank_keys(cell_blocks<std::uint32_t>& keys);

}  // namespace arbor::tree

#endif
