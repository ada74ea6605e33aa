// Sizes of arrays that may be asked for but cannot exist.
#ifndef ARBOR_UTILS_ALLOCATABLE_H
#define ARBOR_UTILS_ALLOCATABLE_H

#include <cstddef>
#include <limits>
#include <new>

namespace strata::util {

// Returns `count`, or throws std::bad_alloc when that many elements of T are more than an address
// can reach: what cannot be allocated then fails in the same way whatever its size, where
// std::vector has an exception of its own.
template <class T>
std::size_t allocatable(unsigned long long count) {
  constexpr unsigned long long most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
  if (count > most) throw std::bad_alloc();
  return static_cast<std::size_t>(count);
}

}  // namespace strata::util

#endif
