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
#include "arbor/formats/open_table.h"
#include "arbor/table/thread_pool.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/block_classifier.h"
#include "arbor/tree/ordered_delivery.h"

namespace arbor::tree {

namespace {

class file_classifier {
 public:
  file_classifier(const std::vector<std::string>& paths, const decision_tree& of_tree,
                  const classification_options& chosen, std::ostream* to)
      : file(paths, chosen.input, open_table_file),
        tree(of_tree),
        options(chosen),
        out(to),
        pool(chosen.threads == 0 ? machine_threads() : chosen.threads),
        delivery(2 * pool.size(), [this](const classified_rows& rows) { deliver(rows); }),
        strays(of_tree.attributes.size()) {}

  classification_result run() {
    file.read_names();
    find_columns();
    if (out != nullptr) write_names(*out);
    const block_classifier classifier(file, tree, cells, options, out != nullptr);
    pool.for_each(pool.size(), [&](std::size_t /*worker*/) { classify_blocks(classifier); });
    for (std::size_t i = 0; i < strays.size(); ++i) remark_on(strays[i], cells.attributes[i]);
    result.table_name = file.name();
    result.input_remarks = file.remarks(file.skipped_lines());
    return std::move(result);
  }

 private:
  void find_columns() {
    for (const auto& attribute : tree.attributes) {
      cells.attributes.push_back(
          file.cell_named(attribute->get_name(), "an attribute of the model"));
    }
    cells.actual = options.class_name.empty()
                       ? file.find(tree.class_column->get_name())
                       : file.cell_named(options.class_name, options.class_from);
    if (!options.weights_name.empty())
      cells.weight = file.cell_named(options.weights_name, options.weights_from);
    if (!options.id_name.empty()) cells.id = file.cell_named(options.id_name, options.id_from);
  }

  void write_names(std::ostream& to) const {
    const char delimiter = file.delimiter();
    for (std::size_t cell = 0; cell < file.names().size(); ++cell) {
      if (!cells.id || cells.id == cell) to << csv_cell(file.names()[cell], delimiter) << delimiter;
    }
    to << csv_cell(unused_name(predicted_column), delimiter);
    if (!options.all_probabilities) to << delimiter << unused_name("probability");
    for (unsigned int c = 1; options.all_probabilities && c <= tree.class_count(); ++c) {
      const std::string name = unused_name("P(" + value_text(*tree.class_column, c) + ")");
      to << delimiter << csv_cell(name, delimiter);
    }
    to << '\n';
  }

  // A name for a new column. The table may have one of that name, if it was classified before.
  std::string unused_name(std::string name) const {
    while (file.find(name)) name += "_2";
    return name;
  }

  // Runs on each thread, until there are no more blocks. There are only so many at a time, so that
  // the memory does not depend on the length of the file.
  void classify_blocks(block_classifier classify) {
    try {
      csv_block block;
      classified_rows classified;
      while (file.next(block)) {
        std::size_t next = 0;
        do {
          next = classify(block, next, classified);
          if (!delivery.put(block.number(), classified, next == block.rows())) return;
        } while (next < block.rows());
      }
    } catch (...) {
      delivery.end();
      throw;
    }
  }

  // Writes and evaluates the rows of the next block. The sums of an evaluation depend on the order
  // of the rows, and so does which error comes first.
  void deliver(const classified_rows& classified) {
    if (out != nullptr) write(classified.text);
    result.rows += classified.rows;
    if (options.progress) options.progress(result.rows);
    if (!classified.cases.empty() && !result.quality) result.quality.emplace();
    for (const scored_case& added : classified.cases) result.quality->add(added);
    for (std::size_t i = 0; i < strays.size(); ++i) strays[i].add(classified.strays[i]);
    if (classified.error) std::rethrow_exception(classified.error);
  }

  void write(const std::string& text) {
    *out << text;
    if (!*out)
      throw table_error(std::string("the rows cannot be written: ") + std::strerror(errno));
  }

  void remark_on(const stray_texts& stray, std::size_t cell) {
    if (stray.count == 0) return;
    result.remarks.push_back(fmt::format(
        "{}: column {}: {} taken as unknown, the first is {} in line {}{}", file.name(),
        in_quotes(file.names()[cell]),
        counted(stray.count, "text that is no number was", "texts that are no numbers were"),
        stray.first, stray.line, stray.file == file.name() ? "" : " of " + stray.file));
  }

  csv_table file;
  const decision_tree& tree;
  const classification_options& options;
  std::ostream* out;  // null if no rows are written
  used_cells cells;
  thread_pool pool;
  ordered_delivery<classified_rows> delivery;
  // Only `deliver` uses these and `out`.
  std::vector<stray_texts> strays;  // by attribute
  classification_result result;
};

}  // namespace

classification_result classify_table(const std::vector<std::string>& paths,
                                     const decision_tree& tree,
                                     const classification_options& options, std::ostream* rows) {
  return file_classifier(paths, tree, options, rows).run();
}

}  // namespace arbor::tree
