#include "arbor/tree/block_classifier.h"

#include <utility>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

namespace {

constexpr std::size_t most_text = 1U << 20U;

}  // namespace

void stray_texts::add(const stray_texts& later) {
  if (count == 0) {
    first = later.first;
    file = later.file;
    line = later.line;
  }
  count += later.count;
}

block_classifier::block_classifier(const csv_table& table, const decision_tree& grown,
                                   const used_cells& used, const classification_options& chosen,
                                   bool writes)
    : file(table),
      tree(grown),
      cells(used),
      options(chosen),
      writes_rows(writes),
      predict(grown, chosen.estimate, chosen.input.numbers),
      read_class(*grown.class_column, chosen.input.numbers),
      texts(grown.attributes.size()) {}

std::size_t block_classifier::operator()(const csv_block& block, std::size_t next,
                                         classified_rows& result) {
  result.rows = 0;
  result.text.clear();
  result.cases.clear();
  result.strays.assign(cells.attributes.size(), {});
  result.error = nullptr;
  try {
    for (; next < block.rows() && result.text.size() < most_text; ++next, ++result.rows)
      classify(block.row(next), result);
    if (next == block.rows()) block.check_end();
  } catch (const table_error&) {
    result.error = std::current_exception();
  }
  return next;
}

void block_classifier::classify(const csv_row& row, classified_rows& result) {
  const double weight = cells.weight ? static_cast<double>(file.weight(row, *cells.weight)) : 1;
  for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = known_cell(row, cells.attributes[i]);
  prediction& predicted = predict(texts);
  if (weight > 0) {
    for (const std::size_t i : predict.unfit()) take_stray(row, i, result.strays[i]);
    const cell_text actual = cells.actual ? known_cell(row, *cells.actual) : unknown_cell;
    if (actual.begin != nullptr) result.cases.push_back(predicted.score(class_of(actual), weight));
  }
  if (!writes_rows) return;
  if (predicted.text.empty()) predicted.text = text_of(predicted.distribution);
  if (cells.id) {
    append_csv_cell(row, *cells.id, result.text);
  } else {
    append_csv_cells(row, result.text);
  }
  result.text += predicted.text;
}

cell_text block_classifier::known_cell(const csv_row& row, std::size_t cell) const {
  return file.unknowns().is_unknown(row, cell) ? unknown_cell : row.cell(cell);
}

void block_classifier::take_stray(const csv_row& row, std::size_t attribute,
                                  stray_texts& strays) const {
  const std::size_t cell = cells.attributes[attribute];
  if (options.strict) {
    file.fail(row, cell,
              "no number; the model has numbers in the column, of the type " +
                  data_type_of(*tree.attributes[attribute]));
  }
  if (strays.count++ > 0) return;
  strays.first = in_quotes(texts[attribute].begin);
  strays.file = row.file_name();
  strays.line = row.line_of(cell);
}

// The entry of a class in the evaluation; one past the last for a class that the model lacks.
std::size_t block_classifier::class_of(cell_text text) {
  const double code = read_class(text);
  return code > 0 ? static_cast<std::size_t>(code) - 1 : tree.class_count();
}

// The end of a row, which is the same for all rows of this distribution.
std::string block_classifier::text_of(const std::vector<double>& distribution) const {
  const std::size_t predicted = likeliest_class(distribution);
  const char delimiter = file.delimiter();
  std::string text =
      csv_cell(value_text(*tree.class_column, static_cast<unsigned int>(predicted) + 1), delimiter);
  const auto append = [&](double probability) {
    text += delimiter + shortest_text(static_cast<float>(probability));
  };
  if (!options.all_probabilities) append(distribution[predicted]);
  for (std::size_t c = 0; options.all_probabilities && c < distribution.size(); ++c)
    append(distribution[c]);
  return text + '\n';
}

}  // namespace arbor::tree
