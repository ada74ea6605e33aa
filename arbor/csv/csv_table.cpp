#include "arbor/csv/csv_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <utility>

#include "arbor/csv/comment_filter.h"
#include "arbor/csv/found_delimiter.h"
#include "arbor/csv/input_file.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/row_division.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/utils/number_text.h"

namespace arbor::tree {

namespace {

std::string two_columns_have(const std::string& name) {
  return "two columns have the name " + in_quotes(name);
}

}  // namespace

csv_table::csv_table(std::vector<std::string> paths, const input_options& chosen,
                     file_opener opener)
    : file_paths(std::move(paths)),
      options(chosen),
      open(std::move(opener)),
      unknown(chosen.unknown_texts) {
  for (std::size_t i = 1; i < file_paths.size(); ++i) parts.push_back({i, std::nullopt});
  open_file(0);
  declarations = file.declared;
  table_name = file.bytes->name();
  if (file_paths.size() > 1)
    table_name += fmt::format(" and {}", counted(file_paths.size() - 1, "more file"));
  // A later file that is missing should not cost the time of reading those before it. Names files
  // may be named without an ending.
  for (const std::string& path : file_paths) {
    std::error_code why;
    if (path == "-" || options.format == "names" || std::filesystem::exists(path, why)) continue;
    throw table_error(fmt::format("{}: cannot be opened: {}", printable(path),
                                  std::strerror(why ? why.value() : ENOENT)));
  }
  if (declarations) {
    if (options.delimiter || !options.has_names || options.keeps_blanks || !options.comment.empty())
      fail("declares its columns; delimiter, header, blanks and comments are chosen for CSV alone");
    std::vector<std::string> texts = chosen.unknown_texts;
    texts.emplace_back("");
    unknown = unknown_texts(std::move(texts));
  }
}

void csv_table::open_file(std::size_t number) {
  file = open(file_paths[number], options);
  if (!file.declared && !options.comment.empty())
    file.bytes = std::make_unique<comment_filter>(std::move(file.bytes), options.comment);
  blocks.emplace(*file.bytes, next_number());
}

void csv_table::keep_parts(std::vector<file_part> chosen) {
  parts = std::move(chosen);
  has_first = false;
  blocks.reset();
}

std::optional<std::uint64_t> csv_table::divisible_size(std::size_t number) const {
  const table_file other = open(file_paths[number], options);
  return options.comment.empty() ? other.bytes->plain_size() : std::nullopt;
}

void csv_table::read_names() {
  if (declarations) {
    form.keeps_blanks = true;  // the blanks around cells are those of texts in quotes
    form.rows_are_lines = true;
    blocks->expect(form);
    for (const declared_column& column : declarations->columns) all_names.push_back(column.name);
    if (const auto taken = index_names()) fail(two_columns_have(all_names[*taken]));
    return;
  }
  form.keeps_blanks = options.keeps_blanks;
  const std::string_view beginning = blocks->beginning();
  const std::optional<char> declared = declared_delimiter(beginning);
  form.delimiter = options.delimiter ? *options.delimiter
                   : declared        ? *declared
                                     : found_delimiter(beginning, options);
  column_names names = read_first_rows();
  all_names = std::move(names.names);
  has_row_numbers = names.has_row_numbers;
  has_final_delimiters = names.has_final_delimiters;
  found = std::move(names.remarks);
  if (!options.delimiter && !declared && form.delimiter != ',') {
    found.insert(found.begin(), {input_remark::matter::delimiter,
                                 "the cells are separated by " + delimiter_name(form.delimiter)});
  }
  if (const auto taken = index_names()) {
    const csv_row row = first.row(0);
    throw table_error(fmt::format("{}:{}: {}", row.file_name(),
                                  row.line_of(std::min(*taken, row.size() - 1)),
                                  two_columns_have(all_names[*taken])));
  }
  if (options.has_names) drop_first_row();
}

// Of the present file; the rows, with that of the names, are left in `first`.
column_names csv_table::read_first_rows() {
  read_first_block();
  if (first.rows() == 0) {
    first.check_end();
    throw table_error(file.bytes->name() + ": empty" +
                      (options.has_names ? "; a table begins with a row of column names" : ""));
  }
  return names_of(first, options.has_names);
}

void csv_table::read_first_block() {
  blocks->expect(form);
  const bool is_declaration = declared_delimiter(blocks->beginning()).has_value();
  has_first = blocks->next(first);
  if (has_first) divide_rows(first);
  if (is_declaration) drop_first_row();
}

void csv_table::drop_first_row() {
  bool is_first = true;
  first.keep_rows([&](const csv_row&) { return !std::exchange(is_first, false); });
}

// Returns false if there is none. Throws unless its file has the columns of the first one.
bool csv_table::open_next_part() {
  if (opened == parts.size()) return false;
  const file_part& part = parts[opened++];
  const std::size_t number = next_number();  // the first block of a file may be read twice
  if (!part.range || part.range->first == 0) open_other_file(part.file);
  if (part.range) open_range(part, number);
  return true;
}

void csv_table::open_range(const file_part& part, std::size_t number) {
  file.bytes =
      std::make_unique<input_file>(file_paths[part.file], part.range->first, part.range->end);
  blocks.emplace(*file.bytes, number);
  blocks->expect(form);
  has_first = false;
  if (part.range->first > 0) {
    blocks->begin_at(part.range->line);
  } else {
    read_first_block();
    if (options.has_names) drop_first_row();
  }
}

// Throws unless it has the columns of the first file.
void csv_table::open_other_file(std::size_t number) {
  const std::string first_file = printable(file_paths.front());
  open_file(number);
  const auto refuse = [&](const std::string& what) {
    throw table_error(fmt::format("{}: {} {}; the files of a table have the same columns",
                                  file.bytes->name(), what, first_file));
  };
  if (file.declared.has_value() != declarations.has_value()) refuse("is of another format than");
  if (declarations) {
    blocks->expect(form);
    if (!(*file.declared == *declarations)) refuse("declares its columns otherwise than");
    return;
  }
  // Programs that write a table in parts write one without a byte for a part without rows.
  if (blocks->beginning().empty()) return;
  const std::vector<std::string> names = read_first_rows().names;
  if (options.has_names) drop_first_row();
  if (!options.has_names || names == all_names) return;
  if (names.size() != all_names.size())
    refuse(fmt::format("has {}, not the {} of", counted(names.size(), "column"), all_names.size()));
  const std::size_t other = static_cast<std::size_t>(
      std::mismatch(names.begin(), names.end(), all_names.begin()).first - names.begin());
  refuse(fmt::format("column {} is {}, not {} as in", other + 1, in_quotes(names[other]),
                     in_quotes(all_names[other])));
}

bool csv_table::next(csv_block& block) {
  bool is_divided = false;
  {
    const std::lock_guard<std::mutex> lock(reading);
    if (is_faulty) return false;  // what follows an error is not read
    while (!has_first && !(blocks && blocks->next(block))) {
      const std::size_t number = next_number();
      try {
        if (!open_next_part()) return false;
      } catch (const table_error&) {
        block.refuse(number, std::current_exception());
        is_faulty = true;
        return true;
      }
    }
    is_divided = std::exchange(has_first, false);
    if (is_divided) std::swap(block, first);
  }
  if (!is_divided) divide_rows(block);
  check_width(block);
  empty_lines += block.empty_lines();
  if (block.has_error()) is_faulty = true;
  return true;
}

void csv_table::check_width(csv_block& block) const {
  const std::size_t width = all_names.size();
  if (block.are_all_of(width)) return;
  block.keep_rows([&](const csv_row& row) {
    const bool fits = row.size() == width ||
                      (has_final_delimiters && row.size() == width + 1 && row.is_empty(width));
    if (fits) return true;
    const char* const are = declarations        ? "there are"
                            : options.has_names ? "the first row names"
                                                : "the first row has";
    const char* advice = "";
    if (row.size() > width && !declarations) {
      advice = has_final_delimiters && row.size() == width + 1
                   ? "; nothing stands behind the last delimiter of the first rows"
                   : "; a cell with a delimiter in it needs quotes";
    }
    fail_at(row, fmt::format("{}, but {} {}{}", counted(row.size(), "cell"), are,
                             counted(width, "column"), advice));
  });
  block.drop_cells_after(width);
}

// Returns the first column that has the name of an earlier one.
std::optional<std::size_t> csv_table::index_names() {
  by_name.resize(all_names.size());
  std::iota(by_name.begin(), by_name.end(), std::size_t{0});
  std::stable_sort(by_name.begin(), by_name.end(),
                   [&](std::size_t a, std::size_t b) { return all_names[a] < all_names[b]; });
  std::optional<std::size_t> taken;
  for (std::size_t i = 1; i < by_name.size(); ++i) {
    const bool is_taken = all_names[by_name[i]] == all_names[by_name[i - 1]];
    if (is_taken && (!taken || by_name[i] < *taken)) taken = by_name[i];
  }
  return taken;
}

std::optional<std::size_t> csv_table::row_number_cell() const {
  return has_row_numbers ? std::optional<std::size_t>(0) : std::nullopt;
}

std::vector<input_remark> csv_table::remarks(std::size_t skipped_lines) const {
  std::vector<input_remark> all = found;
  if (skipped_lines > 0 && !declarations) {
    all.push_back(
        {input_remark::matter::empty_lines,
         counted(skipped_lines, options.comment.empty() ? "empty line" : "empty line or comment",
                 options.comment.empty() ? "" : "empty lines and comments") +
             (skipped_lines == 1 ? " was skipped" : " were skipped")});
  }
  return all;
}

std::optional<std::size_t> csv_table::find(const std::string& column) const {
  const auto place = std::lower_bound(
      by_name.begin(), by_name.end(), column,
      [&](std::size_t cell, const std::string& wanted) { return all_names[cell] < wanted; });
  if (place == by_name.end() || all_names[*place] != column) return std::nullopt;
  return *place;
}

std::size_t csv_table::cell_named(const std::string& column, const std::string& purpose) const {
  if (const std::optional<std::size_t> cell = find(column)) return *cell;
  fail(fmt::format("there is no column {} for {}{}", in_quotes(column), purpose,
                   did_you_mean(column, all_names)));
}

float csv_table::weight(const csv_row& row, std::size_t cell) const {
  double value = 0;
  std::string storage;
  const char* text = known_text(row, cell);
  if (text != nullptr) text = usual_text(options.numbers, text, storage);
  if (text == nullptr || !strata::util::read_number(text, value) || !(value >= 0) ||
      !std::isfinite(static_cast<float>(value))) {
    fail(row, cell, "no weight; a weight is a finite number from 0 up, and 0 leaves the row out");
  }
  return static_cast<float>(value);
}

void csv_table::fail(const std::string& what) const {
  throw table_error(table_name + ": " + what);
}

void csv_table::fail_at(const csv_row& row, const std::string& what) const {
  throw table_error(fmt::format("{}:{}: {}", row.file_name(), row.line(), what));
}

void csv_table::fail(const csv_row& row, std::size_t cell, const std::string& what) const {
  throw table_error(fmt::format("{}:{}: column {}: {} is {}", row.file_name(), row.line_of(cell),
                                in_quotes(all_names[cell]), in_quotes(row.text(cell)), what));
}

}  // namespace arbor::tree
