// A plain record of two public fields, an aggregate. It is used for a case (row, weight) and for a
// range of codes [first, second).
//
//   strata::util::pair<unsigned int, float> weighted_case{17, 1.0F};
#ifndef ARBOR_UTILS_PAIR_H
#define ARBOR_UTILS_PAIR_H

namespace strata::util {

template <class A, class B>
struct pair {
  A first;
  B second;
};

}  // namespace strata::util

#endif
