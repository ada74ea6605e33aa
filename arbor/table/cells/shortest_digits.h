// Floating-point numbers in memory as the plain numbers of their shortest texts, which is how
// programs write them to files. No text is made of most of them.
//
//   shortest_digits digits;
//   for (double price : prices) use(digits.of(price));   // 12.5 is 125 with one decimal
#ifndef ARBOR_TABLE_CELLS_SHORTEST_DIGITS_H
#define ARBOR_TABLE_CELLS_SHORTEST_DIGITS_H

#include <string>

#include "arbor/table/cells/plain_number.h"

namespace arbor::tree {

// The numbers of a column mostly need as many decimals as the one before them, so one object is for
// one column.
class shortest_digits {
 public:
  // The number in the fewest decimal digits that read back to the same double or float, at least
  // one of them a decimal where there is room: 3 is 3.0, as files have it. no_plain_number for a
  // negative zero and for what is too large, too small or not finite; its text is needed then.
  plain_number of(double number);
  plain_number of(float number);

 private:
  plain_number with_decimals(double number, unsigned int decimals) const;

  unsigned int usual_decimals = 1;
  bool are_many = false;  // whether the number before had more digits than a double always keeps
};

// The shortest text of any number: "1e+300", "-inf", "-0.0".
std::string shortest_number_text(double number);
std::string shortest_number_text(float number);

}  // namespace arbor::tree

#endif
