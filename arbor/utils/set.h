// The value-set builder: collects values one by one and hands them out sorted, each once.
//
//   strata::adt::set<strata::data_types::datatype<int>> builder;
//   for (int v : {3, 1, 3}) builder.insert(v);
//   std::unique_ptr<std::vector<strata::data_types::datatype<int>>> sorted(builder.get());  // 1, 3
#ifndef ARBOR_UTILS_SET_H
#define ARBOR_UTILS_SET_H

#include <memory>
#include <vector>

#include "arbor/utils/nocopy.h"

namespace strata::adt {

// T is datatype<int>, datatype<unsigned int>, datatype<float>, datatype<double> or datatype<std::string>.
//
// A direct-mapped cache of 1339 slots absorbs repeats without touching the vector behind it; the vector is sorted and
// freed of duplicates whenever it has grown to four times the size it had after the last such compaction. A builder
// without values holds no storage.
template <class T>
class set : private util::nocopy {
 public:
  set();
  virtual ~set();

  // Takes a copy of `value`. On std::bad_alloc the values taken before are all still there.
  virtual void insert(const T& value);

  // The distinct values in ascending order; the caller owns the vector, and the builder is empty again. Values that are
  // not numbers equal nothing: they come last, as many as were inserted. Of 0 and -0, which are equal, 0 is kept.
  // On std::bad_alloc nothing is changed.
  virtual std::vector<T>* get();

 private:
  struct slot_cache;

  void compact();

  unsigned int flush_threshold;             // size of `pending` that asks for a compaction
  std::unique_ptr<std::vector<T>> pending;  // values evicted from the cache; null, like `slots`, without values
  std::unique_ptr<slot_cache> slots;
};

}  // namespace strata::adt

#endif
