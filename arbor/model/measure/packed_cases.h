// A node's cases in the order of their codes, where all of them weigh the same: then nothing of a
// case matters but its code and its class, and equal codes may stand in any order, so that a case
// is one integer. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_PACKED_CASES_H
#define ARBOR_MODEL_MEASURE_PACKED_CASES_H

#include <algorithm>
#include <type_traits>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/even_weight.h"
#include "arbor/utils/work_array.h"

namespace arbor::impls {

// The number of bits that the numbers up to `greatest` take.
constexpr unsigned int bits_of(unsigned int greatest) {
  unsigned int bits = 0;
  for (; greatest != 0; greatest >>= 1U) ++bits;
  return bits;
}

class packed_cases {
 public:
  // Whether codes of the range and class codes fit into one integer together.
  static bool can_hold(const strata::util::pair<unsigned int, unsigned int>& code_range,
                       unsigned int class_count) {
    return bits_of(code_range.second - code_range.first) + bits_of(class_count) <= 32;
  }

  // The known codes among `cases`, of which there are some, lie in `code_range`, which these can
  // hold.
  template <class CodeOf>
  packed_cases(CodeOf code_of, const column& class_column, const w_sequence& cases,
               const strata::util::pair<unsigned int, unsigned int>& code_range)
      : before_first(code_range.first - 1),
        code_bits(bits_of(code_range.second - code_range.first)),
        class_bits(bits_of(class_column.get_distinct() - 1)),
        count(cases.size()),
        weight_of_each(cases),
        numbers(weight_of_each.likely() ? room_for(cases.size()) : 0,
                strata::util::first_values::any) {
    if (!weight_of_each.likely()) return;
    with_codes(class_column, [&](auto class_of) { is_even = take(code_of, class_of, cases); });
    if (is_even) sort();
  }

  // Whether all cases weigh the same whole number, above 0, and have an exact sum. Else nothing
  // more can be told.
  bool even() const { return is_even; }
  // The weight of each.
  unsigned int weight(std::size_t /*i*/ = 0) const { return weight_of_each.value(); }
  float unknown_weight() const { return static_cast<float>(unknown * weight()); }

  // The cases whose value is known, in the order of their codes.
  std::size_t size() const { return count - unknown; }
  unsigned int code(std::size_t i) const { return before_first + (known[i] >> class_bits); }
  unsigned int class_code(std::size_t i) const { return known[i] & ((1U << class_bits) - 1); }

 private:
  static constexpr std::size_t most_compared =
      64;  // beyond, comparing costs more than going by digits

  // Many are sorted to and fro between two halves.
  static std::size_t room_for(std::size_t cases) {
    return cases <= most_compared ? cases : 2 * cases;
  }

  // Returns whether they are even. (A case without a class belongs to no sum by class; counting has
  // no place for it.)
  template <class CodeOf, class ClassOf>
  bool take(CodeOf code_of, ClassOf class_of, const w_sequence& cases) {
    // A class column of a user's own is asked once for each case, and for none whose value is
    // unknown.
    if constexpr (std::is_same_v<ClassOf, virtual_indices>) return false;
    const unsigned int before = before_first;
    const unsigned int shift = class_bits;
    unsigned int difference = 0;
    bool all_classes_known = true;
    unsigned int* number = numbers.data();
    for (const auto& c : cases) {
      difference |= weight_of_each.difference(c.second);
      const auto code = static_cast<unsigned int>(code_of(c.first));
      const unsigned int class_code = class_of(c.first);
      all_classes_known = all_classes_known & (class_code != 0);
      const unsigned int offset = code == 0 ? 0 : code - before;
      *number++ = offset << shift | class_code;
      unknown += code == 0 ? 1 : 0;
    }
    return difference == 0 && all_classes_known;
  }

  void sort();

  unsigned int before_first;  // code of the range
  unsigned int code_bits;
  unsigned int class_bits;
  std::size_t count;
  std::size_t unknown = 0;
  even_weight weight_of_each;
  bool is_even = false;
  // The offset of each case's code, 0 for the unknown one, before its class code.
  strata::util::work_array<unsigned int, most_compared> numbers;
  const unsigned int* known = nullptr;  // the first known one of them, once they are sorted
};

}  // namespace arbor::impls

#endif
