// How the loops over the cases read codes: a column's storage is looked up once per call, and no
// longer for each case. Internal to the library.
//
//   with_codes(class_column, [&](auto class_of) {
//     for (const auto& [row, weight] : *cases) weights[class_of(row)] += weight;
//   });
#ifndef ARBOR_MODEL_CODE_READERS_H
#define ARBOR_MODEL_CODE_READERS_H

#include <typeinfo>

#include "arbor/model/column_bool.h"
#include "arbor/model/column_typed.h"

namespace arbor::impls {

// Codes in their full width.
template <class T>
struct stored_codes {
  const T* codes;
  T operator()(unsigned int row) const { return codes[row]; }
};

struct stored_bits {
  const unsigned int* words;
  unsigned int operator()(unsigned int row) const {
    return 1U + (words[row >> strata::adt::bitmap::BASE_log] >> (row & 31U) & 1U);
  }
};

// Codes as get_row_index returns them, in 32 bits.
template <class T>
struct stored_indices {
  const T* codes;
  explicit stored_indices(const column& source)
      : codes(static_cast<const column_typed<T>&>(source).codes().data()) {}
  unsigned int operator()(unsigned int row) const { return static_cast<unsigned int>(codes[row]); }
};

struct virtual_indices {
  const column* source;
  unsigned int operator()(unsigned int row) const { return source->get_row_index(row); }
};

// Calls `use` with a reader that returns what get_row_index returns.
//
// A class derived from one of the library's own may override get_row_index, so only the library's
// own classes are read without it.
template <class Use>
void with_codes(const column& source, Use&& use) {
  const std::type_info& storage = typeid(source);
  if (storage == typeid(column_typed<unsigned char>)) {
    use(stored_indices<unsigned char>(source));
  } else if (storage == typeid(column_typed<unsigned short>)) {
    use(stored_indices<unsigned short>(source));
  } else if (storage == typeid(column_typed<unsigned int>)) {
    use(stored_indices<unsigned int>(source));
  } else if (storage == typeid(column_typed<unsigned long long>)) {
    use(stored_indices<unsigned long long>(source));
  } else if (storage == typeid(column_bool)) {
    use(stored_bits{static_cast<const column_bool&>(source).bits().data()});
  } else {
    use(virtual_indices{&source});
  }
}

// Calls `use` with a reader of the codes of a column_typed<T> in their full width; for a derived
// class, with one that returns what get_row_index returns.
template <class T, class Use>
void with_column_codes(const column_typed<T>& source, Use&& use) {
  if (typeid(source) == typeid(column_typed<T>)) {
    use(stored_codes<T>{source.codes().data()});
  } else {
    use(virtual_indices{&source});
  }
}
template <class Use>
void with_column_codes(const column_bool& source, Use&& use) {
  if (typeid(source) == typeid(column_bool)) {
    use(stored_bits{source.bits().data()});
  } else {
    use(virtual_indices{&source});
  }
}

// Returns whether a column is of one of the library's own classes, which override nothing.
inline bool is_library_column(const column& source) {
  const std::type_info& storage = typeid(source);
  return storage == typeid(column) || storage == typeid(column_bool) ||
         storage == typeid(column_typed<unsigned char>) ||
         storage == typeid(column_typed<unsigned short>) ||
         storage == typeid(column_typed<unsigned int>) ||
         storage == typeid(column_typed<unsigned long long>);
}

}  // namespace arbor::impls

#endif
