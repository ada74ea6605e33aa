// Classifies the rows of a CSV file, one by one, so that the file may be of any length.
#ifndef ARBOR_TREE_TABLE_CLASSIFICATION_H
#define ARBOR_TREE_TABLE_CLASSIFICATION_H

#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "arbor/tree/classification.h"

namespace arbor::tree {

struct classification_options {
  // The column of the rows' weights in the matrix, where 0 leaves a row out; empty if each weighs 1.
  std::string weights_name;
  // What asked for that column, as the message says that it is missing.
  std::string weights_from = "the weights";
  std::vector<std::string> unknown_texts;  // see unknown_texts.h
  bool all_probabilities = false;          // a column for each class
  std::function<void(std::size_t rows)> progress;
};

struct classification_result {
  std::size_t rows = 0;
  // Of the rows whose class the table tells. The entry behind the last of the tree's classes is for
  // all others. None when the table has no column of the class's name.
  std::optional<confusion_matrix> matrix;
};

// Writes the table's cells as they are and, behind them, the columns "predicted" and "probability"
// or, with all probabilities, "predicted" and one "P(class)" for each class. Columns are found by
// their names. Throws table_error for a column that is missing and a text that is not of the data
// type of the tree's attribute; rows before it are written.
classification_result classify_table(const std::string& path, const decision_tree& tree,
                                     const classification_options& options, std::ostream& out);

}  // namespace arbor::tree

#endif
