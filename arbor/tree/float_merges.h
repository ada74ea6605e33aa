// Counts the distinct numbers of a float column that are lost in it because they are equal as float.
#ifndef ARBOR_TREE_FLOAT_MERGES_H
#define ARBOR_TREE_FLOAT_MERGES_H

#include <limits>
#include <memory>
#include <vector>

#include "arbor/utils/datatype.h"
#include "arbor/utils/set.h"

namespace arbor::tree {

// Whether another decimal number than this one, read as `value`, may be the same float. Up to six significant digits
// tell floats apart, unless they are out of the range of full precision (std::numeric_limits<float>::digits10).
bool may_merge_as_float(const char* text, double value);

class float_merges {
 public:
  // For a column whose codes are at most `known_values`.
  explicit float_merges(unsigned int known_values)
      : first_seen(known_values + 1ULL, std::numeric_limits<double>::quiet_NaN()) {}

  // Takes the number of a row and the code that it got.
  void add(unsigned int code, double value);

  // How many distinct numbers there are beyond one for each code. Forgets them.
  std::size_t count();

 private:
  std::vector<double> first_seen;  // by code; the others that got the code:
  strata::adt::set<strata::data_types::datatype<double>> others;
};

}  // namespace arbor::tree

#endif
