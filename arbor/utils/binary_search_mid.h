// Lookup of a text in a sorted vector of texts by halving.
#ifndef ARBOR_UTILS_BINARY_SEARCH_MID_H
#define ARBOR_UTILS_BINARY_SEARCH_MID_H

#include "arbor/utils/string_util.h"

namespace strata::adt {

// Searches [first, last) for `key`; on success sets `found` to the entry and returns true, else
// returns false. The entries are datatype<std::string>, the key is NUL-terminated.
//
// Entries and key are compared as NUL-terminated texts of signed characters, while texts are sorted
// as unsigned bytes: a text that holds bytes of 0x80 and above can be missed although it is there.
// Texts of plain ASCII never are.
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
