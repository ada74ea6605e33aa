// What is thrown for a lack of storage where the message is to say what for; elsewhere it is
// std::bad_alloc.
#ifndef ARBOR_UTILS_NO_STORAGE_H
#define ARBOR_UTILS_NO_STORAGE_H

#include <stdexcept>

namespace strata::util {

// A class of its own, so that callers who take a std::runtime_error for something wrong with their
// data can tell.
class no_storage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace strata::util

#endif
