// Counts the distinct numbers of a float column that are lost in it because they are equal as
// float.
#ifndef ARBOR_TABLE_FLOAT_MERGES_H
#define ARBOR_TABLE_FLOAT_MERGES_H

#include <cstdint>
#include <unordered_set>
#include <vector>

#include "arbor/table/plain_number.h"

namespace arbor::tree {

// Whether another decimal number than this one, read as `value`, may be the same float. Up to six
// significant digits tell floats apart, unless they are out of the range of full precision
// (std::numeric_limits<float>::digits10).
bool may_merge_as_float(const char* text, double value);
bool may_merge_as_float(plain_number number);

// The decimal number that a text tells, as a number of 64 bits: the same for all ways to write it,
// and hardly that of another one, however many digits they have. Never 0.
std::uint64_t number_identity(const char* text);
std::uint64_t number_identity(plain_number number);

class float_merges {
 public:
  // For a column whose codes are at most `known_values`.
  explicit float_merges(std::size_t known_values) : first_seen(known_values + 1, 0) {}

  // Takes the identity of a row's number and the code that it got.
  void add(unsigned int code, std::uint64_t number) {
    if (first_seen[code] == number) return;
    if (first_seen[code] == 0) {
      first_seen[code] = number;
    } else {
      others.insert(number);
    }
  }

  // How many distinct numbers there are beyond one for each code.
  std::size_t count() const { return others.size(); }

 private:
  std::vector<std::uint64_t> first_seen;  // by code; 0 before any. The others that got a code:
  std::unordered_set<std::uint64_t> others;
};

}  // namespace arbor::tree

#endif
