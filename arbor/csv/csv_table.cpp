#include "arbor/csv/csv_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

void csv_table::read(const std::function<void()>& when_named,
                     const std::function<void(const csv_row&)>& use) {
  bool named = false;
  read_csv(file, [&](const csv_row& row) {
    if (named) {
      check_width(row);
      use(row);
    } else {
      read_names(row);
      named = true;
      when_named();
    }
  });
  if (!named) fail("empty; a table begins with a row of column names");
}

void csv_table::read_names(const csv_row& row) {
  std::set<std::string> seen;
  for (std::size_t cell = 0; cell < row.size(); ++cell) {
    const std::string column = row.text(cell);
    if (column.empty()) fail_at(row.line_of(cell), fmt::format("column {} has no name", cell + 1));
    if (!seen.insert(column).second)
      fail_at(row.line_of(cell), "two columns have the name " + in_quotes(column));
    column_names.push_back(column);
  }
}

void csv_table::check_width(const csv_row& row) const {
  if (row.size() == column_names.size()) return;
  fail_at(row.line(),
          fmt::format(
              "{}, but the first row names {}{}", counted(row.size(), "cell"),
              counted(column_names.size(), "column"),
              row.size() > column_names.size() ? "; a cell with a comma in it needs quotes" : ""));
}

std::size_t csv_table::cell_named(const std::string& column, const std::string& purpose) const {
  const auto found = std::find(column_names.begin(), column_names.end(), column);
  if (found == column_names.end()) {
    fail(fmt::format("there is no column {} for {}{}", in_quotes(column), purpose,
                     did_you_mean(column, column_names)));
  }
  return static_cast<std::size_t>(found - column_names.begin());
}

float csv_table::weight(const csv_row& row, std::size_t cell) const {
  double value = 0;
  const char* text = known_text(row, cell);
  if (text == nullptr || !strata::util::read_number(text, value) || !(value >= 0) ||
      !std::isfinite(static_cast<float>(value))) {
    fail(row, cell, "no weight; a weight is a finite number from 0 up, and 0 leaves the row out");
  }
  return static_cast<float>(value);
}

void csv_table::fail(const std::string& what) const {
  throw table_error(file.name() + ": " + what);
}

void csv_table::fail_at(unsigned long long line, const std::string& what) const {
  throw table_error(fmt::format("{}:{}: {}", file.name(), line, what));
}

void csv_table::fail(const csv_row& row, std::size_t cell, const std::string& what) const {
  fail_at(row.line_of(cell), fmt::format("column {}: {} is {}", in_quotes(column_names[cell]),
                                         in_quotes(row.text(cell)), what));
}

}  // namespace arbor::tree
