// The value-set builder: collects values one by one and returns them sorted, each once.
//
//   strata::adt::set<strata::data_types::datatype<int>> builder;
//   for (int v : {3, 1, 3}) builder.insert(v);
//   std::unique_ptr<std::vector<strata::data_types::datatype<int>>> sorted(builder.get());  // 1, 3
#ifndef ARBOR_UTILS_SET_H
#define ARBOR_UTILS_SET_H

#include <memory>
#include <vector>

#include "arbor/utils/datatype.h"
#include "arbor/utils/nocopy.h"

namespace strata::adt {

// T is datatype<int>, datatype<unsigned int>, datatype<float>, datatype<double> or
// datatype<std::string>.
//
// Two values are the same if they compare equal; the one inserted first is kept (this matters for 0
// and -0 only). A NaN equals nothing, so each one inserted is kept.
//
// A value is first put into a direct-mapped cache of 1339 slots, where a repeat is dropped without
// any allocation. A value that another one displaces from its slot moves on to a vector, which is
// sorted and freed of repeats when it has 256 values, and then whenever it has grown to four times
// the size it had after the last time. The cache exists from the first `insert` until `get`.
template <class T>
class set : private util::nocopy {
 public:
  set();
  virtual ~set();

  // Adds a copy of `value`. Throws std::bad_alloc; nothing is changed then.
  virtual void insert(const T& value);

  // Adds all of `values` in their order, as if each was inserted. Into an empty builder the vector
  // is moved as it is, and `get` does not sort it if it ascends without repeats. Throws
  // std::bad_alloc; the builder is unchanged then.
  void insert_all(std::vector<T> values);

  // Returns the distinct values in ascending order, NaNs last. The caller owns the vector; the
  // builder is empty afterwards. Throws std::bad_alloc; no value is lost then.
  virtual std::vector<T>* get();

  // Removes all values and releases their storage.
  void clear() noexcept;

 private:
  struct slot_cache;

  void empty_slots(std::size_t more);
  void compact();

  unsigned int flush_threshold;       // size of `pending` at which it is compacted
  std::vector<T> pending;             // values displaced from the cache or inserted all at once
  std::unique_ptr<slot_cache> slots;  // null while there are no values to cache
};

extern template class set<data_types::datatype<int>>;
extern template class set<data_types::datatype<unsigned int>>;
extern template class set<data_types::datatype<float>>;
extern template class set<data_types::datatype<double>>;
extern template class set<data_types::datatype<std::string>>;

}  // namespace strata::adt

#endif
