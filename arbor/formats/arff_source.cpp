#include "arbor/formats/arff_source.h"

#include <fmt/format.h>

#include <charconv>
#include <utility>

#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/formats/arff_header.h"
#include "arbor/formats/arff_line.h"

namespace arbor::tree {

namespace {

constexpr character_set cell_ends(",\t");
constexpr character_set number_ends(" \t,}");
constexpr character_set sparse_cell_ends(",\t}");

constexpr const char* about_weights =
    "; weights of rows go into an attribute of their own, and a text with braces needs quotes";

// What is left of a row at whose end nothing should be.
void check_row_end(arff_line& line, const line_reader& lines) {
  if (line.at_end()) return;
  const bool may_be_weight = line.remaining().find('{') != std::string_view::npos;
  lines.fail(in_quotes(line.remaining()) + " follows the last cell" +
             (may_be_weight ? about_weights : "; commas separate cells"));
}

}  // namespace

arff_source::arff_source(std::unique_ptr<byte_source> of, expansion_limit limit)
    : line_converter(std::move(of)), most(std::move(limit)), header(read_arff_header(lines)) {
  count_lines_before_rows();
  for (const declared_column& column : header.columns) {
    std::string& text = left_out.emplace_back();
    if (column.values) {
      append_converted({column.values->front(), true}, text);
    } else if (column.data_type.empty()) {
      text = "0";
    }
  }
}

void arff_source::convert(std::string_view line, std::string& to) {
  arff_line cells(line, lines);
  if (cells.at_end()) return;
  if (!cells.take('{')) return convert_cells(cells, to);
  const std::size_t before = to.size();
  convert_sparse(cells, to);
  expanded += to.size() - before;
  most.check(expanded, *file);
}

void arff_source::convert_cells(arff_line& line, std::string& to) {
  const std::size_t columns = left_out.size();
  std::size_t count = 0;
  do {
    if (count++ > 0) to += ',';
    line.read(cell, cell_ends);
    if (!cell.is_literal && !cell.text.empty() && cell.text.front() == '{')
      lines.fail(in_quotes(cell.text) + " is no cell" + about_weights);
    append_converted(cell, to);
  } while (line.take_separator());
  check_row_end(line, lines);
  if (count == columns) return;
  lines.fail(fmt::format(
      "{}, but {} declared; {}", counted(count, "cell"),
      columns == 1 ? "1 attribute is" : fmt::format("{} attributes are", columns),
      count < columns ? "commas separate cells" : "a cell with a comma in it needs quotes"));
}

// After the opening brace.
void arff_source::convert_sparse(arff_line& line, std::string& to) {
  std::size_t next = 0;  // column
  while (!line.take('}')) {
    if (next > 0 && !line.take_separator())
      lines.fail("a sparse row without } at its end; expected {NUMBER VALUE, NUMBER VALUE}");
    const std::size_t column = read_number(line, next);
    append_left_out(next, column, to);
    line.read(cell, sparse_cell_ends);
    if (column > 0) to += ',';
    append_converted(cell, to);
    next = column + 1;
  }
  append_left_out(next, left_out.size(), to);
  check_row_end(line, lines);
}

// Reads the number of an attribute, which is at least `least`.
std::size_t arff_source::read_number(arff_line& line, std::size_t least) {
  line.read(cell, number_ends);
  const std::string& text = cell.text;
  std::size_t number = 0;
  const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
  if (read.ec == std::errc() && read.ptr == text.data() + text.size() && !cell.is_literal &&
      number >= least && number < left_out.size()) {
    return number;
  }
  lines.fail(fmt::format(
      "a sparse row: {} is no number of an attribute; they are from 0 to {} and ascend, as in "
      "{{0 VALUE, 3 VALUE}}",
      in_quotes(text), left_out.size() - 1));
}

// The cells of the columns from `first` up to `end`, which the row does not write.
void arff_source::append_left_out(std::size_t first, std::size_t end, std::string& to) const {
  for (std::size_t i = first; i < end; ++i) {
    if (i > 0) to += ',';
    to += left_out[i];
  }
}

}  // namespace arbor::tree
