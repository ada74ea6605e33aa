// The sizes that an array can have.
#ifndef ARBOR_UTILS_ALLOCATABLE_H
#define ARBOR_UTILS_ALLOCATABLE_H

#include <cstddef>
#include <limits>
#include <new>

namespace strata::util {

// Returns `count`, or throws std::bad_alloc if an array of `count` elements of T is larger than the
// address space allows. Call it before `resize`, `reserve` or `insert` of a vector with a size that
// was read or added up: what cannot be allocated then fails in one way, where std::vector throws
// std::length_error beyond its largest size.
template <class T>
std::size_t allocatable(unsigned long long count) {
  constexpr unsigned long long most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
  if (count > most) throw std::bad_alloc();
  return static_cast<std::size_t>(count);
}

}  // namespace strata::util

#endif
