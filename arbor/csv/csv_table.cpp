#include "arbor/csv/csv_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "arbor/csv/message_text.h"
#include "arbor/csv/row_division.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

void csv_table::read_names() {
  if (blocks.next(first)) divide_rows(first, file.name());
  if (first.rows() == 0) {
    first.check_end();
    fail("empty; a table begins with a row of column names");
  }
  name_columns(first.row(0));
  bool is_header = true;
  first.keep_rows([&](const csv_row&) { return !std::exchange(is_header, false); });
  has_first = true;
}

bool csv_table::next(csv_block& block) {
  {
    const std::lock_guard<std::mutex> lock(reading);
    if (is_faulty) return false;  // what follows an error is not read
    if (has_first) {
      std::swap(block, first);
      has_first = false;
    } else {
      if (!blocks.next(block)) return false;
    }
  }
  if (block.number() > 0) divide_rows(block, file.name());
  if (!block.are_all_of(column_names.size()))
    block.keep_rows([&](const csv_row& row) { return check_width(row), true; });
  if (block.has_error()) is_faulty = true;
  return true;
}

void csv_table::name_columns(const csv_row& row) {
  for (std::size_t cell = 0; cell < row.size(); ++cell) column_names.emplace_back(row.text(cell));
  by_name.resize(column_names.size());
  std::iota(by_name.begin(), by_name.end(), std::size_t{0});
  std::stable_sort(by_name.begin(), by_name.end(),
                   [&](std::size_t a, std::size_t b) { return column_names[a] < column_names[b]; });
  // The first column whose name is missing or taken.
  std::size_t wrong = column_names.size();
  for (std::size_t i = 0; i < by_name.size(); ++i) {
    const std::string& column = column_names[by_name[i]];
    if (column.empty() || (i > 0 && column == column_names[by_name[i - 1]]))
      wrong = std::min(wrong, by_name[i]);
  }
  if (wrong == column_names.size()) return;
  const std::string& column = column_names[wrong];
  fail_at(row.line_of(wrong), column.empty() ? fmt::format("column {} has no name", wrong + 1)
                                             : "two columns have the name " + in_quotes(column));
}

void csv_table::check_width(const csv_row& row) const {
  if (row.size() == column_names.size()) return;
  fail_at(row.line(),
          fmt::format(
              "{}, but the first row names {}{}", counted(row.size(), "cell"),
              counted(column_names.size(), "column"),
              row.size() > column_names.size() ? "; a cell with a comma in it needs quotes" : ""));
}

std::optional<std::size_t> csv_table::find(const std::string& column) const {
  const auto found = std::lower_bound(
      by_name.begin(), by_name.end(), column,
      [&](std::size_t cell, const std::string& name) { return column_names[cell] < name; });
  if (found == by_name.end() || column_names[*found] != column) return std::nullopt;
  return *found;
}

std::size_t csv_table::cell_named(const std::string& column, const std::string& purpose) const {
  if (const std::optional<std::size_t> cell = find(column)) return *cell;
  fail(fmt::format("there is no column {} for {}{}", in_quotes(column), purpose,
                   did_you_mean(column, column_names)));
}

float csv_table::weight(const csv_row& row, std::size_t cell, const number_form& form) const {
  double value = 0;
  std::string storage;
  const char* text = known_text(row, cell);
  if (text != nullptr) text = usual_text(form, text, storage);
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
