// The exception for a lack of memory where a message is documented; elsewhere it is std::bad_alloc.
#ifndef ARBOR_UTILS_NO_STORAGE_H
#define ARBOR_UTILS_NO_STORAGE_H

#include <stdexcept>

namespace strata::util {

// A class of its own, so that callers for whom a std::runtime_error means damaged data can tell it
// from a lack of memory.
class no_storage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace strata::util

#endif
