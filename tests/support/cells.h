// Texts as a file has them in its cells.
#ifndef ARBOR_TESTS_SUPPORT_CELLS_H
#define ARBOR_TESTS_SUPPORT_CELLS_H

#include <string>

#include "arbor/csv/cell_text.h"

namespace arbor::tests {

// The text stays in the string.
inline tree::cell_text as_cell(std::string& text) {
  text.reserve(text.size() + tree::readable_after_cell);
  return {text.c_str(), text.size()};
}

}  // namespace arbor::tests

#endif
