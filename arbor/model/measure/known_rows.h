// The class of a case whose value is unknown is not read: the class column may have no such row. A
// loop that does not branch on its cases reads that of another row instead. Internal to the model.
//
//   const known_rows class_rows(code_of, cases);
//   if (!class_rows.none()) use(class_of(class_rows(code_of(row), row)));
#ifndef ARBOR_MODEL_MEASURE_KNOWN_ROWS_H
#define ARBOR_MODEL_MEASURE_KNOWN_ROWS_H

#include "arbor/model/w_sequence.h"

namespace arbor::impls {

class known_rows {
 public:
  template <class CodeOf>
  known_rows(CodeOf code_of, const w_sequence& cases) {
    for (const auto& c : cases) {
      if (code_of(c.first) == 0) continue;
      known_row = c.first;
      found = true;
      break;
    }
  }

  // Whether no case has a known value.
  bool none() const { return !found; }

  // `row` itself if its code is known, else a row whose code is.
  template <class Code>
  unsigned int operator()(Code code, unsigned int row) const {
    const unsigned int if_unknown = 0U - static_cast<unsigned int>(code == 0);
    return (row & ~if_unknown) | (known_row & if_unknown);
  }

 private:
  unsigned int known_row = 0;
  bool found = false;
};

}  // namespace arbor::impls

#endif
