// The value-set builder: collects values one by one and hands them out sorted, each once.
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
// Values collect in a vector, which is sorted and freed of duplicates at 256 values and then
// whenever it has grown to four times the size it had after the last such compaction. From the
// first compaction on, a direct-mapped cache of 1339 slots absorbs repeats without touching the
// vector; before it, the cache would outweigh the values of a small table.
template <class T>
class set : private util::nocopy {
 public:
  set();
  virtual ~set();

  // Takes a copy of `value`. On std::bad_alloc nothing is changed.
  virtual void insert(const T& value);

  // Takes many values, as if each was inserted, but at no cost beyond that of the vector when there
  // were none before; those in ascending order without repeats need no sorting either. On
  // std::bad_alloc nothing is changed.
  void insert_all(std::vector<T> values);

  // The distinct values in ascending order; the caller owns the vector, and the builder is empty
  // again. NaNs equal nothing: they come last, as many as were inserted. Of 0 and -0, which are
  // equal, 0 is kept. On std::bad_alloc nothing is changed.
  virtual std::vector<T>* get();

  // Forgets all values.
  void clear() noexcept;

 private:
  struct slot_cache;

  void compact();

  unsigned int flush_threshold;       // size of `pending` that asks for a compaction
  std::vector<T> pending;             // values that are not in the cache, or were evicted from it
  std::unique_ptr<slot_cache> slots;  // null until the first compaction
};

extern template class set<data_types::datatype<int>>;
extern template class set<data_types::datatype<unsigned int>>;
extern template class set<data_types::datatype<float>>;
extern template class set<data_types::datatype<double>>;
extern template class set<data_types::datatype<std::string>>;

}  // namespace strata::adt

#endif
