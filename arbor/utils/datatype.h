// One typed attribute value and nothing else: the unknown value is the domain's affair, not the
// value's.
//
//   strata::data_types::datatype<int> four = 4;
//   bool less = four < strata::data_types::datatype<int>(7);
#ifndef ARBOR_UTILS_DATATYPE_H
#define ARBOR_UTILS_DATATYPE_H

#include <utility>

namespace strata::data_types {

// T is int, unsigned int, float, double or std::string. Values compare with T's own `<` and `==`;
// texts therefore compare as unsigned bytes, a proper prefix before the longer text.
template <class T>
struct datatype {
  T value{};

  datatype() = default;
  datatype(T initial)
      : value(std::move(initial)) {}  // NOLINT(google-explicit-constructor): it is that value

  friend bool operator<(const datatype& a, const datatype& b) { return a.value < b.value; }
  friend bool operator==(const datatype& a, const datatype& b) { return a.value == b.value; }
};

}  // namespace strata::data_types

#endif
