#include "arbor/csv/row_delivery.h"

#include <fmt/format.h>

#include "arbor/csv/table_error.h"

namespace arbor::tree {

void row_delivery::begin_row() {
  row_line = line;
  if (empty_line == 0) return;
  line = empty_line;
  fail("an empty line; only the end of a table may have some");
}

void row_delivery::end_line(csv_row& row, char* characters) {
  if (row.size() == 0) {
    if (empty_line == 0) empty_line = line;
  } else {
    row.finish(characters, row_line);
    use_row(row);
    row.clear();
  }
  ++line;
}

void row_delivery::fail(const std::string& what) const {
  throw table_error(fmt::format("{}:{}: {}", name, line, what));
}

}  // namespace arbor::tree
