#include "arbor/tree/file_classifier.h"

#include <fmt/format.h>

#include <utility>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/shown_text.h"
#include "arbor/table/value_text.h"

namespace arbor::tree {

file_classifier::file_classifier(csv_table& table, const decision_tree& of_tree,
                                 const classification_options& chosen, bool writes)
    : file(table), tree(of_tree), options(chosen), writes_rows(writes) {
  file.read_names();
  find_columns();
}

void file_classifier::find_columns() {
  for (const auto& attribute : tree.attributes) {
    cells.attributes.push_back(file.cell_named(attribute->get_name(), "an attribute of the model"));
  }
  cells.actual = options.class_name.empty()
                     ? file.find(tree.class_column->get_name())
                     : file.cell_named(options.class_name, options.class_from);
  if (!options.weights_name.empty())
    cells.weight = file.cell_named(options.weights_name, options.weights_from);
  if (!options.id_name.empty()) cells.id = file.cell_named(options.id_name, options.id_from);
}

void file_classifier::write_names(std::ostream& out) const {
  const char delimiter = file.delimiter();
  for (std::size_t cell = 0; cell < file.names().size(); ++cell) {
    if (!cells.id || cells.id == cell) out << csv_cell(file.names()[cell], delimiter) << delimiter;
  }
  out << csv_cell(unused_name(predicted_column), delimiter);
  if (!options.all_probabilities) out << delimiter << unused_name("probability");
  for (unsigned int c = 1; options.all_probabilities && c <= tree.class_count(); ++c) {
    const std::string name = unused_name("P(" + value_text(*tree.class_column, c) + ")");
    out << delimiter << csv_cell(name, delimiter);
  }
  out << '\n';
}

// A name for a new column. The table may have one of that name, if it was classified before.
std::string file_classifier::unused_name(std::string name) const {
  while (file.find(name)) name += "_2";
  return name;
}

void file_classifier::rows(const std::function<void(const classified_rows&)>& take) {
  thread_pool pool(options.threads == 0 ? machine_threads() : options.threads);
  ordered_delivery<classified_rows> delivery(std::size_t{2} * pool.size(),
                                             [&](const classified_rows& part) {
                                               take(part);
                                               if (part.error) std::rethrow_exception(part.error);
                                             });
  const block_classifier classifier(file, tree, cells, options, writes_rows);
  pool.for_each(pool.size(),
                [&](std::size_t /*worker*/) { classify_blocks(classifier, delivery); });
}

// Runs on each thread, until there are no more blocks. There are only so many at a time, so that
// the memory does not depend on the length of the file.
void file_classifier::classify_blocks(block_classifier classify,
                                      ordered_delivery<classified_rows>& delivery) {
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

std::vector<std::string> file_classifier::remarks(const std::vector<stray_texts>& strays) const {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < strays.size(); ++i) {
    const stray_texts& stray = strays[i];
    if (stray.count == 0) continue;
    result.push_back(fmt::format(
        "{}: column {}: {} taken as unknown, the first is {} in line {}{}", file.name(),
        in_quotes(file.names()[cells.attributes[i]]),
        counted(stray.count, "text that is no number was", "texts that are no numbers were"),
        stray.first, stray.line, stray.file == file.name() ? "" : " of " + stray.file));
  }
  return result;
}

}  // namespace arbor::tree
