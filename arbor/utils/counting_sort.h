// Sorts cases by the codes of their rows, in place and in linear time.
//
//   using key = column_typed<unsigned char>::get_index_struct;
//   strata::adt::counting_sort<strata::util::pair<unsigned int, float>, key>(
//       cases.begin(), cases.end(), 0, 4, key{&column}, 0);
#ifndef ARBOR_UTILS_COUNTING_SORT_H
#define ARBOR_UTILS_COUNTING_SORT_H

#include <cstddef>
#include <utility>
#include <vector>

#include "arbor/utils/allocatable.h"

namespace strata::adt {

// Sorts [begin, end), less than 2^32 elements in one array, by `key(element)` in ascending order.
// The sort is not stable. `Element` is a type that can be swapped; `key` returns an unsigned int
// and is called twice or more for each element.
//
// A key of 0 is replaced by `unknown_key`. All keys must be in [low_key, key_end) then, which is
// not checked. If that range has fewer than two keys, nothing is moved. Allocates two arrays of
// key_end - low_key counters. Throws std::bad_alloc and what `key` throws; the elements are all
// still there then, in any order.
template <class Element, class Key, class Iterator>
void counting_sort(Iterator begin, Iterator end, unsigned int low_key, unsigned int key_end,
                   Key key, unsigned int unknown_key) {
  if (begin == end || low_key + 1 >= key_end) return;

  const auto block_of = [&](const Element& element) {
    const unsigned int k = key(element);
    return (k == 0 ? unknown_key : k) - low_key;
  };

  // counts[b] becomes the position of the last free slot of block b; a block is filled from its
  // last slot downward. (If the first block is empty, its position wraps around below 0; nothing is
  // ever stored there.)
  std::vector<unsigned int> counts(util::allocatable<unsigned int>(key_end - low_key), 0);
  for (Iterator element = begin; element != end; ++element) ++counts[block_of(*element)];
  --counts[0];
  for (std::size_t b = 1; b < counts.size(); ++b) counts[b] += counts[b - 1];
  const std::vector<unsigned int> last = counts;

  // The element to be moved next always stays at `current`, so that none is lost if the key throws.
  const auto count = static_cast<unsigned int>(end - begin);
  unsigned int current = 0;
  while (current < count) {
    const unsigned int block = block_of(begin[current]);
    if (counts[block] > current) {
      std::swap(begin[current], begin[counts[block]]);
      --counts[block];
    } else {
      current = last[block] + 1;  // its block is complete: it is in the last free slot
    }
  }
}

}  // namespace strata::adt

#endif
