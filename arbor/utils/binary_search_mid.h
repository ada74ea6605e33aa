// Finds a text in a sorted sequence of texts by binary search.
//
//   std::vector<strata::data_types::datatype<std::string>> sizes{{"large"}, {"small"}};
//   auto found = sizes.end();
//   if (strata::adt::binary_search_mid(sizes.begin(), sizes.end(), "small", found)) use(*found);
#ifndef ARBOR_UTILS_BINARY_SEARCH_MID_H
#define ARBOR_UTILS_BINARY_SEARCH_MID_H

#include "arbor/utils/string_util.h"

namespace strata::adt {

// Searches [first, last), random-access iterators to datatype<std::string> in ascending order, for
// `key`, which is NUL-terminated. Returns whether an entry equals it; `found` is that entry then,
// and unchanged otherwise. Throws nothing.
//
// Entries and key are compared as NUL-terminated texts of signed characters, while texts are sorted
// as unsigned bytes. A text that contains bytes of 0x80 and above may therefore not be found. Plain
// ASCII is always found.
template <class Iterator, class Found>
bool binary_search_mid(Iterator first, Iterator last, const char* key, Found& found) {
  while (first < last) {
    const Iterator mid = first + (last - first) / 2;
    const int order = util::string_util::compare_signed(mid->value.c_str(), key);
    if (order == 0) {
      found = mid;
      return true;
    }
    if (order < 0) {
      first = mid + 1;
    } else {
      last = mid;
    }
  }
  return false;
}

// The same for a key that is a datatype<std::string>.
template <class T, class Iterator, class Found>
bool binary_search_mid(Iterator first, Iterator last, const T& key, Found& found) {
  return binary_search_mid(first, last, key.value.c_str(), found);
}

}  // namespace strata::adt

#endif
