#include "arbor/table/column_types.h"

#include <fmt/format.h>

#include <memory>
#include <set>
#include <utility>

#include "arbor/csv/block_reader.h"
#include "arbor/csv/comment_filter.h"
#include "arbor/csv/csv_cell.h"
#include "arbor/csv/input_file.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/row_division.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/table_loader.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

class types_reader {
 public:
  declared_table read(const std::string& path) {
    comment_filter file(std::make_unique<input_file>(path), "#");
    block_reader blocks(file);
    bool is_first = true;
    for (csv_block block; blocks.next(block); block.check_end()) {
      divide_rows(block);
      for (std::size_t i = 0; i < block.rows(); ++i) {
        if (std::exchange(is_first, false)) {
          check_first(block.row(i));
        } else {
          add(block.row(i));
        }
      }
    }
    if (is_first) throw table_error(file.name() + ": empty; " + first_line());
    return std::move(result);
  }

 private:
  static std::string first_line() {
    return "a file of types begins with the line " +
           in_quotes(std::string(types_beginning, std::string(types_beginning).size() - 1));
  }

  static std::string place(const csv_row& row) {
    return fmt::format("{}:{}: ", row.file_name(), row.line());
  }

  // Spreadsheets write rows of equally many cells, with empty ones at the end.
  static std::size_t used_cells_of(const csv_row& row) {
    std::size_t cells = row.size();
    while (cells > 0 && row.is_empty(cells - 1)) --cells;
    return cells;
  }

  static void check_first(const csv_row& row) {
    std::string line;
    for (std::size_t i = 0; i < used_cells_of(row); ++i) append_csv_cell(row, i, line);
    if (!line.empty()) line.back() = '\n';
    if (line != types_beginning) throw table_error(place(row) + first_line());
  }

  void add(const csv_row& row) {
    constexpr std::size_t first_value = 3;
    const auto cell = [&](std::size_t i) -> std::string {
      return i < row.size() ? row.text(i) : "";
    };
    declared_column column{cell(0), cell(1), cell(2), std::nullopt};
    if (!column.kind.empty()) {
      check_choice(place(row) + "kind: ", column.kind,
                   {"discrete", "continuous", "ignore", "class", "weights"});
    }
    if (!column.data_type.empty())
      check_choice(place(row) + "type: ", column.data_type, data_types());
    const std::size_t cells = used_cells_of(row);
    if (cells > first_value) {
      if (column.data_type.empty())
        throw table_error(place(row) + "there are values without a type");
      column.values.emplace();
      for (std::size_t i = first_value; i < cells; ++i) column.values->emplace_back(row.text(i));
    }
    if (!names.insert(column.name).second)
      throw table_error(place(row) + "two lines are about the column " + in_quotes(column.name));
    const bool is_only = column.kind == "class" || column.kind == "weights";
    if (is_only && !sole_kinds.insert(column.kind).second)
      throw table_error(place(row) + "two columns are of the kind " + column.kind);
    result.columns.push_back(std::move(column));
  }

  declared_table result;
  std::set<std::string> names;
  std::set<std::string> sole_kinds;  // that a line has had, of those that only one column may have
};

// In quotes where the text would be nothing, or a comment, without them.
void append(const std::string& text, std::ostream& out) {
  std::string cell = csv_cell(text);
  if (text.empty() || cell.front() == '#') {
    cell.clear();
    append_quoted_cell(text, cell);
  }
  out << cell;
}

}  // namespace

declared_table read_types(const std::string& path) {
  return types_reader().read(path);
}

void write_types(std::ostream& out, const table& of) {
  out << types_beginning;
  for (const auto& column : of.columns) {
    const std::string data_type = data_type_of(*column);
    append(column->get_name(), out);
    out << ',' << column->get_type() << ',' << (data_type == "null" ? "" : data_type);
    const bool has_values = column->is_discrete() || column->is_class();
    for (unsigned int code = 1; has_values && code < column->get_distinct(); ++code) {
      out << ',';
      append(value_text(*column, code), out);
    }
    out << '\n';
  }
}

}  // namespace arbor::tree
