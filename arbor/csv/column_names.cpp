#include "arbor/csv/column_names.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "arbor/csv/shown_text.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

using matter = input_remark::matter;

bool have_all_of(const csv_block& block, std::size_t first_row, std::size_t cells) {
  std::size_t row = first_row;
  while (row < block.rows() && block.row(row).size() == cells) ++row;
  return row == block.rows();
}

bool end_with_empty_cell(const csv_block& block, std::size_t first_row) {
  std::size_t row = first_row;
  while (row < block.rows() && block.row(row).is_empty(block.row(row).size() - 1)) ++row;
  return row == block.rows();
}

// A name that is not among these, which are sorted.
std::string unused(std::string name, const std::vector<std::string>& sorted) {
  while (std::binary_search(sorted.begin(), sorted.end(), name)) name += "_2";
  return name;
}

bool is_number(const std::string& text) {
  double ignored = 0;
  return strata::util::read_number(text.c_str(), ignored);
}

class naming {
 public:
  naming(const csv_block& first, bool has_names) {
    const csv_row row = first.row(0);
    found.names.resize(row.size());
    for (std::size_t i = 0; has_names && i < row.size(); ++i) found.names[i] = row.text(i);
    const std::size_t first_row = has_names ? 1 : 0;
    const std::size_t cells = first_row < first.rows() ? first.row(first_row).size() : row.size();
    if (have_all_of(first, first_row, cells))
      find_shape(cells, end_with_empty_cell(first, first_row));
    if (has_names) {
      name_first_column();
      remark_on_numbers();
    }
    name_others(has_names);
  }

  column_names found;

 private:
  // `cells` is how many the first row below the names has.
  void find_shape(std::size_t cells, bool last_is_empty) {
    const std::size_t named = found.names.size();
    const bool has_last_name = named < 2 || !found.names.back().empty();
    if (!has_last_name && (last_is_empty || cells + 1 == named)) {
      found.names.pop_back();
      remark_on_final_delimiters();
    } else if (cells == named + 1 && last_is_empty) {
      remark_on_final_delimiters();
    } else if (cells == named + 1) {
      found.names.insert(found.names.begin(), "");
    }
  }

  void remark_on_final_delimiters() {
    found.has_final_delimiters = true;
    add(matter::final_delimiters, "lines end with a delimiter, and no column is behind it");
  }

  void name_first_column() {
    if (found.names.size() < 2 || !found.names.front().empty()) return;
    found.has_row_numbers = true;
    found.names.front() = unused("row", sorted_names());
    add(matter::row_numbers, "the first column has no name; it is called " +
                                 in_quotes(found.names.front()) + " and is no attribute");
  }

  void remark_on_numbers() {
    if (std::all_of(found.names.begin(), found.names.end(), is_number))
      add(matter::numeric_names, "every column name is a number");
  }

  void name_others(bool has_names) {
    std::vector<std::string> sorted;
    std::size_t missing = 0;
    std::string first_made;
    for (std::size_t i = 0; i < found.names.size(); ++i) {
      std::string& name = found.names[i];
      if (!name.empty()) continue;
      if (has_names && missing == 0) sorted = sorted_names();
      name = unused(fmt::format("column_{}", i + 1), sorted);
      if (++missing == 1)
        first_made = fmt::format("column {} has no name; it is called {}", i + 1, in_quotes(name));
    }
    if (!has_names || missing == 0) return;
    if (missing > 1) first_made += fmt::format("; {} more have none either", missing - 1);
    add(matter::made_up_name, first_made);
  }

  std::vector<std::string> sorted_names() const {
    std::vector<std::string> sorted = found.names;
    std::sort(sorted.begin(), sorted.end());
    return sorted;
  }

  void add(matter about, const std::string& text) { found.remarks.push_back({about, text}); }
};

}  // namespace

column_names names_of(const csv_block& first, bool has_names) {
  return std::move(naming(first, has_names).found);
}

}  // namespace arbor::tree
