// An array for the duration of a call, whose length is known when it is made. A short one needs no
// allocation: in a small node of a tree, allocations would take more time than the work.
//
//   work_array<float, 64> weights(classes);  // zeros
//   weights[class_code] += weight;
#ifndef ARBOR_UTILS_WORK_ARRAY_H
#define ARBOR_UTILS_WORK_ARRAY_H

#include <algorithm>
#include <array>
#include <cstddef>
#include <memory>

#include "arbor/utils/allocatable.h"
#include "arbor/utils/nocopy.h"

namespace strata::util {

enum class first_values { zeros, any };

// T is a number or a plain record of numbers. Up to `Short` elements are stored in the object
// itself.
template <class T, std::size_t Short>
class work_array : private nocopy {
 public:
  // Makes an array of `length` elements: zeros, or with first_values::any without defined values,
  // to be written before they are read. Throws std::bad_alloc.
  explicit work_array(unsigned long long length, first_values values = first_values::zeros)
      : count(allocatable<T>(length)) {
    if (count > Short) {
      heap.reset(values == first_values::zeros ? new T[count]() : new T[count]);
      first = heap.get();
      return;
    }
    first = local.data();
    if (values == first_values::zeros) std::fill_n(first, count, T());
  }

  T* data() { return first; }
  const T* data() const { return first; }
  std::size_t size() const { return count; }
  T& operator[](std::size_t i) { return first[i]; }
  const T& operator[](std::size_t i) const { return first[i]; }

 private:
  std::size_t count;
  T* first = nullptr;
  std::unique_ptr<T[]> heap;
  std::array<T, Short> local;
};

}  // namespace strata::util

#endif
