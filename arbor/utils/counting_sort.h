// Sorts weighted cases by the value code of their rows, in place and in linear time.
//
//   using key = column_typed<unsigned char>::get_index_struct;
//   strata::adt::counting_sort<strata::util::pair<unsigned int, float>, key>(cases.begin(), cases.end(), 0, 4,
//                                                                            key{&column}, 0);
#ifndef ARBOR_UTILS_COUNTING_SORT_H
#define ARBOR_UTILS_COUNTING_SORT_H

#include <cstddef>
#include <utility>
#include <vector>

#include "arbor/utils/allocatable.h"

namespace strata::adt {

// Sorts [begin, end), a contiguous run of Element, by key(element), ascending; equal keys end in no
// order to rely on.
//
// A key of 0 counts as `unknown_key`; after that every key lies in [low_key, key_end), which is not
// checked. With fewer than two possible keys the run stays as it is. Takes two arrays of key_end -
// low_key counters. When the key or an allocation throws, the exception passes and the run still
// holds all its elements, in some order.
template <class Element, class Key, class Iterator>
void counting_sort(Iterator begin, Iterator end, unsigned int low_key, unsigned int key_end,
                   Key key, unsigned int unknown_key) {
  if (begin == end || low_key + 1 >= key_end) return;

  const auto block_of = [&](const Element& element) {
    const unsigned int k = key(element);
    return (k == 0 ? unknown_key : k) - low_key;
  };

  // counts[b] becomes the position of the last free slot of block b; blocks are filled from their
  // last slot downward. (Positions are unsigned: an empty first block has the position before 0,
  // which nothing is ever stored at.)
  std::vector<unsigned int> counts(util::allocatable<unsigned int>(key_end - low_key), 0);
  for (Iterator element = begin; element != end; ++element) ++counts[block_of(*element)];
  --counts[0];
  for (std::size_t b = 1; b < counts.size(); ++b) counts[b] += counts[b - 1];
  const std::vector<unsigned int> last = counts;

  // The element in hand always lies at `current`, so that a key that throws loses none.
  const auto count = static_cast<unsigned int>(end - begin);
  unsigned int current = 0;
  while (current < count) {
    const unsigned int block = block_of(begin[current]);
    if (counts[block] > current) {
      std::swap(begin[current], begin[counts[block]]);
      --counts[block];
    } else {
      current =
          last[block] + 1;  // it lies in the last free slot of its block, which is complete with it
    }
  }
}

}  // namespace strata::adt

#endif
