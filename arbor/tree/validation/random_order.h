// Random numbers and orders that are the same on every machine: the generators of the standard
// library are, its distributions and std::shuffle are not.
//
//   std::mt19937_64 random = generator_of({seed, fold});
//   shuffle(rows.begin(), rows.end(), random);
#ifndef ARBOR_TREE_VALIDATION_RANDOM_ORDER_H
#define ARBOR_TREE_VALIDATION_RANDOM_ORDER_H

#include <cstdint>
#include <initializer_list>
#include <random>
#include <utility>

namespace arbor::tree {

// A generator for one piece of work, identified by its numbers. Pieces that each have a generator
// of their own may be done in any order.
inline std::mt19937_64 generator_of(std::initializer_list<std::uint32_t> numbers) {
  std::seed_seq seeds(numbers);
  return std::mt19937_64(seeds);
}

// Makes all orders of a sequence equally likely (R. Durstenfeld, Communications of the ACM 7
// (1964), 420), up to the remainder of dividing 2^64 by its size.
template <class Iterator>
void shuffle(Iterator first, Iterator last, std::mt19937_64& random) {
  for (auto left = last - first; left > 1; --left) {
    const auto chosen = random() % static_cast<std::uint64_t>(left);
    std::swap(first[left - 1], first[static_cast<decltype(left)>(chosen)]);
  }
}

}  // namespace arbor::tree

#endif
