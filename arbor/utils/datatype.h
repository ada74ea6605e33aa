// One known value of an attribute. Unknown values are handled by the domain and have no form here.
//
//   strata::data_types::datatype<int> four = 4;
//   bool less = four < strata::data_types::datatype<int>(7);
#ifndef ARBOR_UTILS_DATATYPE_H
#define ARBOR_UTILS_DATATYPE_H

#include <utility>

namespace strata::data_types {

// T is int, unsigned int, float, double or std::string. Values are compared by `<` and `==` of T:
// texts by their bytes as unsigned numbers, where a text comes after its own beginning.
template <class T>
struct datatype {
  T value{};

  datatype() = default;  // zero, or the empty text
  datatype(T initial)
      : value(std::move(initial)) {}  // NOLINT(google-explicit-constructor): it is that value

  friend bool operator<(const datatype& a, const datatype& b) { return a.value < b.value; }
  friend bool operator==(const datatype& a, const datatype& b) { return a.value == b.value; }
};

}  // namespace strata::data_types

#endif
