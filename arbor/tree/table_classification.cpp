#include "arbor/tree/table_classification.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/csv_table.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/class_distribution.h"
#include "arbor/tree/text_classifier.h"

namespace arbor::tree {

namespace {

class file_classifier {
 public:
  file_classifier(const std::string& path, const decision_tree& of_tree,
                  const classification_options& chosen, std::ostream* to)
      : file(path, unknown_texts(chosen.unknown_texts)),
        tree(of_tree),
        options(chosen),
        out(to),
        predict(of_tree, chosen.estimate),
        read_class(*of_tree.class_column),
        texts(of_tree.attributes.size()),
        strays(of_tree.attributes.size()) {}

  classification_result run() {
    const auto begin = [&] {
      find_columns();
      if (out != nullptr) write_names(*out);
    };
    try {
      file.read(begin, [&](const csv_row& row) { classify(row); });
    } catch (...) {
      write_rows();
      throw;
    }
    write_rows();
    for (std::size_t i = 0; i < strays.size(); ++i) remark_on(strays[i], cells[i]);
    return std::move(result);
  }

 private:
  static constexpr std::size_t block = 1U << 16U;

  void find_columns() {
    for (const auto& attribute : tree.attributes) {
      cells.push_back(file.cell_named(attribute->get_name(), "an attribute of the model"));
    }
    find_class();
    if (!options.weights_name.empty())
      weights_cell = file.cell_named(options.weights_name, options.weights_from);
  }

  void find_class() {
    class_cell = options.class_name.empty()
                     ? file.find(tree.class_column->get_name())
                     : file.cell_named(options.class_name, options.class_from);
  }

  void write_names(std::ostream& to) const {
    for (const std::string& name : file.names()) to << csv_cell(name) << ',';
    to << unused_name(predicted_column);
    if (!options.all_probabilities) to << ',' << unused_name("probability");
    for (unsigned int c = 1; options.all_probabilities && c <= class_count(); ++c) {
      to << ',' << csv_cell(unused_name("P(" + value_text(*tree.class_column, c) + ")"));
    }
    to << '\n';
  }

  // A name for a new column. The table may have one of that name, if it was classified before.
  std::string unused_name(std::string name) const {
    while (file.find(name)) name += "_2";
    return name;
  }

  void classify(const csv_row& row) {
    ++result.rows;
    if (options.progress) options.progress(result.rows);
    const double weight = weights_cell ? static_cast<double>(file.weight(row, *weights_cell)) : 1;
    for (std::size_t i = 0; i < cells.size(); ++i) texts[i] = known_cell(row, cells[i]);
    prediction& predicted = predict(texts);
    if (weight > 0) {
      for (const std::size_t attribute : predict.unfit()) take_stray(row, attribute);
      evaluate(row, predicted.distribution, weight);
    }
    if (out != nullptr) write(row, predicted);
  }

  cell_text known_cell(const csv_row& row, std::size_t cell) const {
    return file.unknowns().is_unknown(row, cell) ? cell_text{nullptr, 0} : row.cell(cell);
  }

  void take_stray(const csv_row& row, std::size_t attribute) {
    if (options.strict) {
      file.fail(row, cells[attribute],
                "no number; the model has numbers in the column, of the type " +
                    tree.attributes[attribute]->get_o_set()->get_datatype());
    }
    if (strays[attribute].count++ > 0) return;
    strays[attribute].first = in_quotes(texts[attribute].begin);
    strays[attribute].line = row.line_of(cells[attribute]);
  }

  void evaluate(const csv_row& row, const std::vector<double>& distribution, double weight) {
    const cell_text actual = class_cell ? known_cell(row, *class_cell) : cell_text{nullptr, 0};
    if (actual.begin == nullptr) return;
    if (!result.quality) result.quality.emplace();
    result.quality->add(scored(class_of(actual), distribution, weight));
  }

  void write(const csv_row& row, prediction& predicted) {
    for (std::size_t cell = 0; cell < row.size(); ++cell) {
      append_cell(row, cell);
      rows += ',';
    }
    if (predicted.text.empty()) predicted.text = text_of(predicted.distribution);
    rows += predicted.text;
    if (rows.size() >= block) write_rows();
  }

  void append_cell(const csv_row& row, std::size_t cell) {
    const cell_text text = row.cell(cell);
    if (text.length == 0 && !row.is_empty(cell)) {
      rows += "\"\"";
    } else {
      append_csv_cell({text.begin, text.length}, rows);
    }
  }

  // What is written of a prediction: the end of a row.
  std::string text_of(const std::vector<double>& distribution) const {
    const std::size_t predicted = likeliest_class(distribution);
    std::string text =
        csv_cell(value_text(*tree.class_column, static_cast<unsigned int>(predicted) + 1));
    const auto append = [&](double probability) {
      text += ',' + shortest_text(static_cast<float>(probability));
    };
    if (!options.all_probabilities) append(distribution[predicted]);
    if (options.all_probabilities) std::for_each(distribution.begin(), distribution.end(), append);
    return text + '\n';
  }

  void write_rows() {
    if (out == nullptr) return;
    *out << rows;
    rows.clear();
    if (!*out)
      throw table_error(std::string("the rows cannot be written: ") + std::strerror(errno));
  }

  unsigned int class_count() const { return tree.class_column->get_distinct() - 1; }

  // The entry of a class in the evaluation; one past the last for a class that the model lacks.
  std::size_t class_of(cell_text text) {
    const double code = read_class(text);
    return code > 0 ? static_cast<std::size_t>(code) - 1 : class_count();
  }

  // The texts of one attribute that are no numbers.
  struct stray_texts {
    std::size_t count = 0;
    std::string first;  // in quotes
    unsigned long long line = 0;
  };

  void remark_on(const stray_texts& stray, std::size_t cell) {
    if (stray.count == 0) return;
    result.remarks.push_back(fmt::format(
        "{}: column {}: {} taken as unknown, the first is {} in line {}", file.name(),
        in_quotes(file.names()[cell]),
        counted(stray.count, "text that is no number was", "texts that are no numbers were"),
        stray.first, stray.line));
  }

  csv_table file;
  const decision_tree& tree;
  const classification_options& options;
  std::ostream* out;  // null if no rows are written
  text_classifier predict;
  value_reader read_class;
  std::vector<std::size_t> cells;  // by attribute of the tree
  std::optional<std::size_t> class_cell;
  std::optional<std::size_t> weights_cell;
  std::vector<cell_text> texts;     // by attribute, of the present row
  std::string rows;                 // to be written
  std::vector<stray_texts> strays;  // by attribute
  classification_result result;
};

}  // namespace

classification_result classify_table(const std::string& path, const decision_tree& tree,
                                     const classification_options& options, std::ostream* rows) {
  return file_classifier(path, tree, options, rows).run();
}

}  // namespace arbor::tree
