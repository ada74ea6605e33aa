#include "arbor/tree/table_classification.h"

#include <cerrno>
#include <cstring>

#include "arbor/csv/csv_table.h"
#include "arbor/csv/table_error.h"
#include "arbor/formats/open_table.h"
#include "arbor/tree/file_classifier.h"

namespace arbor::tree {

void write_rows(std::ostream& out, std::string_view text) {
  out << text;
  if (!out) throw table_error(std::string("the rows cannot be written: ") + std::strerror(errno));
}

// The sums of an evaluation depend on the order of the rows, and so does which error comes first.
classification_result classify_table(const std::vector<std::string>& paths,
                                     const decision_tree& tree,
                                     const classification_options& options, std::ostream* rows) {
  csv_table file(paths, options.input, open_table_file);
  file_classifier classify(file, tree, options, rows != nullptr);
  if (rows != nullptr) classify.write_names(*rows);
  classification_result result;
  std::vector<stray_texts> strays(tree.attributes.size());
  classify.rows([&](const classified_rows& classified) {
    if (rows != nullptr) write_rows(*rows, classified.text);
    result.rows += classified.rows;
    if (options.progress) options.progress(result.rows);
    if (!classified.cases.empty() && !result.quality) result.quality.emplace();
    for (const scored_case& added : classified.cases) result.quality->add(added);
    for (std::size_t i = 0; i < strays.size(); ++i) strays[i].add(classified.strays[i]);
  });
  result.remarks = classify.remarks(strays);
  result.table_name = file.name();
  result.input_remarks = file.remarks(file.skipped_lines());
  return result;
}

}  // namespace arbor::tree
