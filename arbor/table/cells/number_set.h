// A set of plain numbers. 64 consecutive numbers with the same number of decimals share a word of
// bits, so that those of a column that are close together take little more than a bit each.
//
//   number_set numbers;
//   for (int i : {3, 4, 9}) numbers.add(plain_integer(i));
//   numbers.unite(others);
//   numbers.for_each([](plain_number number) { ... });
#ifndef ARBOR_TABLE_CELLS_NUMBER_SET_H
#define ARBOR_TABLE_CELLS_NUMBER_SET_H

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "arbor/table/cells/plain_number.h"

namespace arbor::tree {

class number_set {
 public:
  struct word {
    std::uint64_t place;  // of its first number, divided by 64
    std::uint64_t bits;   // bit i stands for the number at the place after i others
  };

  number_set() = default;
  // `in_order`: by place, no word empty.
  explicit number_set(std::vector<word> in_order);

  // The order of the set: that of the numbers where they have the same number of decimals, and so
  // of integers. A plain number has its decimals in its low five bits; here they come above the low
  // six bits of the digits.
  static std::uint64_t place_of(plain_number number) {
    const std::uint64_t ordered = static_cast<std::uint64_t>(number) ^ highest_bit;
    return (ordered & ~0x7FFULL) | (ordered & 0x1FU) << 6U | (ordered >> 5U & 0x3FU);
  }

  // Adds a number that comes after all others.
  void add(plain_number number);
  void unite(const number_set& other);

  std::size_t size() const { return count; }
  const std::vector<word>& words() const { return all; }

  // Calls use(number) for each number, in their order.
  template <class Use>
  void for_each(Use use) const;

 private:
  static constexpr std::uint64_t highest_bit = 1ULL << 63U;

  static plain_number number_at(std::uint64_t place) {
    const std::uint64_t ordered =
        (place & ~0x7FFULL) | (place & 0x3FU) << 5U | (place >> 6U & 0x1FU);
    return static_cast<plain_number>(ordered ^ highest_bit);
  }

  std::vector<word> all;
  std::size_t count = 0;
};

inline void number_set::add(plain_number number) {
  const std::uint64_t place = place_of(number);
  if (all.empty() || all.back().place != place / 64) all.push_back({place / 64, 0});
  all.back().bits |= 1ULL << place % 64;
  ++count;
}

template <class Use>
void number_set::for_each(Use use) const {
  for (const word& w : all) {
    for (std::uint64_t bits = w.bits; bits != 0; bits &= bits - 1)
      use(number_at(w.place * 64 + static_cast<std::uint64_t>(__builtin_ctzll(bits))));
  }
}

}  // namespace arbor::tree

#endif
