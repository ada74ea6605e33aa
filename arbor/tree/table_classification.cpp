#include "arbor/tree/table_classification.h"

#include <fmt/format.h>

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
        distribution_of(of_tree, chosen.estimate),
        strays(of_tree.attributes.size()) {}

  classification_result run() {
    const auto begin = [&] {
      find_columns();
      if (out != nullptr) write_names(*out);
    };
    file.read(begin, [&](const csv_row& row) { classify(row); });
    for (std::size_t i = 0; i < strays.size(); ++i) remark_on(strays[i], cells[i]);
    return std::move(result);
  }

 private:
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
    texts.clear();
    for (const std::size_t cell : cells) texts.push_back(file.known_text(row, cell));
    const std::vector<double> distribution = distribution_of(texts);
    if (weight > 0) {
      for (const std::size_t attribute : distribution_of.unfit()) take_stray(row, attribute);
      evaluate(row, distribution, weight);
    }
    if (out != nullptr) write(row, distribution, *out);
  }

  void take_stray(const csv_row& row, std::size_t attribute) {
    if (options.strict) {
      file.fail(row, cells[attribute],
                "no number; the model has numbers in the column, of the type " +
                    tree.attributes[attribute]->get_o_set()->get_datatype());
    }
    if (strays[attribute].count++ > 0) return;
    strays[attribute].first = in_quotes(texts[attribute]);
    strays[attribute].line = row.line_of(cells[attribute]);
  }

  void evaluate(const csv_row& row, const std::vector<double>& distribution, double weight) {
    const char* const actual = class_cell ? file.known_text(row, *class_cell) : nullptr;
    if (actual == nullptr) return;
    if (!result.quality) result.quality.emplace();
    result.quality->add(class_of(actual), distribution, weight);
  }

  void write(const csv_row& row, const std::vector<double>& distribution, std::ostream& to) const {
    const std::size_t predicted = likeliest_class(distribution);
    for (std::size_t cell = 0; cell < row.size(); ++cell) {
      const std::string text = row.text(cell);
      to << (text.empty() && !row.is_empty(cell) ? "\"\"" : csv_cell(text)) << ',';
    }
    to << csv_cell(value_text(*tree.class_column, static_cast<unsigned int>(predicted) + 1));
    if (!options.all_probabilities)
      to << ',' << shortest_text(static_cast<float>(distribution[predicted]));
    for (std::size_t c = 0; options.all_probabilities && c < distribution.size(); ++c) {
      to << ',' << shortest_text(static_cast<float>(distribution[c]));
    }
    to << '\n';
    if (!to) throw table_error(std::string("the rows cannot be written: ") + std::strerror(errno));
  }

  unsigned int class_count() const { return tree.class_column->get_distinct() - 1; }

  // The entry of a class in the evaluation; one past the last for a class that the model lacks.
  std::size_t class_of(const char* text) const {
    unsigned int code = 0;
    return find_value(*tree.class_column, text, code) && code > 0 ? code - 1 : class_count();
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
  text_classifier distribution_of;
  std::vector<std::size_t> cells;  // by attribute of the tree
  std::optional<std::size_t> class_cell;
  std::optional<std::size_t> weights_cell;
  std::vector<const char*> texts;   // by attribute, of the present row
  std::vector<stray_texts> strays;  // by attribute
  classification_result result;
};

}  // namespace

classification_result classify_table(const std::string& path, const decision_tree& tree,
                                     const classification_options& options, std::ostream* rows) {
  return file_classifier(path, tree, options, rows).run();
}

}  // namespace arbor::tree
