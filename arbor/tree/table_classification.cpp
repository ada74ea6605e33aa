#include "arbor/tree/table_classification.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/csv_table.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/class_distribution.h"
#include "arbor/tree/text_classifier.h"

namespace arbor::tree {

namespace {

class file_classifier {
 public:
  file_classifier(const std::string& path, const decision_tree& of_tree,
                  const classification_options& chosen, std::ostream& to)
      : file(path, unknown_texts(chosen.unknown_texts)),
        tree(of_tree),
        options(chosen),
        out(to),
        distribution_of(of_tree) {}

  classification_result run() {
    const auto begin = [&] {
      find_columns();
      write_names();
    };
    file.read(begin, [&](const csv_row& row) { classify(row); });
    return std::move(result);
  }

 private:
  void find_columns() {
    for (const auto& attribute : tree.attributes) {
      cells.push_back(file.cell_named(attribute->get_name(), "an attribute of the model"));
    }
    const std::vector<std::string>& names = file.names();
    const auto class_name = std::find(names.begin(), names.end(), tree.class_column->get_name());
    if (class_name != names.end()) {
      class_cell = static_cast<std::size_t>(class_name - names.begin());
      result.matrix.emplace();
    }
    if (!options.weights_name.empty())
      weights_cell = file.cell_named(options.weights_name, options.weights_from);
  }

  void write_names() {
    for (const std::string& name : file.names()) out << csv_cell(name) << ',';
    out << unused_name("predicted");
    if (!options.all_probabilities) out << ',' << unused_name("probability");
    for (unsigned int c = 1; options.all_probabilities && c <= class_count(); ++c) {
      out << ',' << csv_cell(unused_name("P(" + value_text(*tree.class_column, c) + ")"));
    }
    out << '\n';
  }

  // A name for a new column. The table may have one of that name, if it was classified before.
  std::string unused_name(std::string name) const {
    const std::vector<std::string>& names = file.names();
    while (std::find(names.begin(), names.end(), name) != names.end()) name += "_2";
    return name;
  }

  void classify(const csv_row& row) {
    ++result.rows;
    if (options.progress) options.progress(result.rows);
    const double weight = weights_cell ? static_cast<double>(file.weight(row, *weights_cell)) : 1;
    texts.clear();
    for (const std::size_t cell : cells) texts.push_back(file.known_text(row, cell));
    const std::vector<double> distribution = distribution_at(row, weight);
    const std::size_t predicted = likeliest_class(distribution);
    const char* const actual = result.matrix ? file.known_text(row, class_cell) : nullptr;
    if (actual != nullptr && weight > 0) result.matrix->add(class_of(actual), predicted, weight);
    write(row, distribution, predicted);
  }

  void write(const csv_row& row, const std::vector<double>& distribution, std::size_t predicted) {
    for (std::size_t cell = 0; cell < row.size(); ++cell) {
      const std::string text = row.text(cell);
      out << (text.empty() && !row.is_empty(cell) ? "\"\"" : csv_cell(text)) << ',';
    }
    out << csv_cell(value_text(*tree.class_column, static_cast<unsigned int>(predicted) + 1));
    if (!options.all_probabilities)
      out << ',' << shortest_text(static_cast<float>(distribution[predicted]));
    for (std::size_t c = 0; options.all_probabilities && c < distribution.size(); ++c) {
      out << ',' << shortest_text(static_cast<float>(distribution[c]));
    }
    out << '\n';
    if (!out) throw table_error(std::string("the rows cannot be written: ") + std::strerror(errno));
  }

  // A row of weight 0 may hold anything, as it may when a tree is grown: a text that does not fit
  // is then an unknown value.
  std::vector<double> distribution_at(const csv_row& row, double weight) {
    while (true) {
      try {
        return distribution_of(texts);
      } catch (const unfit_text& unfit) {
        const auto& attribute = *tree.attributes[unfit.attribute];
        if (weight > 0) {
          file.fail(row, cells[unfit.attribute],
                    "not of the type " + attribute.get_o_set()->get_datatype() +
                        " that the model has for the column");
        }
        texts[unfit.attribute] = nullptr;
      }
    }
  }

  unsigned int class_count() const { return tree.class_column->get_distinct() - 1; }

  // The entry of a class in the matrix; one past the last for a class that the model does not have.
  std::size_t class_of(const char* text) const {
    try {
      unsigned int code = 0;
      if (code_of_text(*tree.class_column, text, code)) return code - 1;
    } catch (const std::runtime_error&) {
      // Not even of the data type.
    }
    return class_count();
  }

  csv_table file;
  const decision_tree& tree;
  const classification_options& options;
  std::ostream& out;
  text_classifier distribution_of;
  std::vector<std::size_t> cells;  // by attribute of the tree
  std::size_t class_cell = 0;
  std::optional<std::size_t> weights_cell;
  std::vector<const char*> texts;
  classification_result result;
};

}  // namespace

classification_result classify_table(const std::string& path, const decision_tree& tree,
                                     const classification_options& options, std::ostream& out) {
  return file_classifier(path, tree, options, out).run();
}

}  // namespace arbor::tree
