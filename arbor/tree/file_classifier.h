// Classifies the rows of a table's files, block by block, on several threads.
//
//   csv_table file({"golf.csv"}, options.input, open_table_file);
//   file_classifier classify(file, tree, options, true);
//   classify.write_names(out);
//   classify.rows([&](const classified_rows& rows) { out << rows.text; });
#ifndef ARBOR_TREE_FILE_CLASSIFIER_H
#define ARBOR_TREE_FILE_CLASSIFIER_H

#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "arbor/csv/csv_table.h"
#include "arbor/table/thread_pool.h"
#include "arbor/tree/block_classifier.h"
#include "arbor/tree/ordered_delivery.h"

namespace arbor::tree {

// Everything that it is constructed with must outlive it.
class file_classifier {
 public:
  // Reads the names of the columns. `writes` says whether the rows are wanted as texts. Throws
  // table_error if a column is missing.
  file_classifier(csv_table& table, const decision_tree& of_tree,
                  const classification_options& chosen, bool writes);

  // Writes the names of the columns that the rows will have.
  void write_names(std::ostream& out) const;

  // Classifies all rows. `take` is called with one part of them after the other, in their order, by
  // one thread at a time. Throws what it throws, and table_error for what is wrong with a row, once
  // those before it have been taken.
  void rows(const std::function<void(const classified_rows&)>& take);

  // How many texts of each attribute were no numbers, a line for each that has some.
  std::vector<std::string> remarks(const std::vector<stray_texts>& strays) const;

 private:
  void find_columns();
  std::string unused_name(std::string name) const;
  void classify_blocks(block_classifier classify, ordered_delivery<classified_rows>& delivery);

  csv_table& file;
  const decision_tree& tree;
  const classification_options& options;
  bool writes_rows;
  used_cells cells;
};

}  // namespace arbor::tree

#endif
