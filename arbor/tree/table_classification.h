// Classifies the rows of a CSV file one by one, so that the file may be of any length.
#ifndef ARBOR_TREE_TABLE_CLASSIFICATION_H
#define ARBOR_TREE_TABLE_CLASSIFICATION_H

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "arbor/tree/confusion_matrix.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

struct classification_options {
  // The column of the rows' weights in the matrix; a row of weight 0 is left out of it. Empty if
  // every row weighs 1.
  std::string weights_name;
  // What a message calls that choice, so that a person knows where it was made.
  std::string weights_from = "the weights";
  std::vector<std::string> unknown_texts;  // see unknown_texts.h
  bool all_probabilities = false;          // a column for each class instead of one
  // Called with the number of rows after each row. May be empty.
  std::function<void(std::size_t rows)> progress;
};

struct classification_result {
  std::size_t rows = 0;
  // Of the rows whose class is known. The entry after the last of the tree's classes is for all
  // other classes. Absent if the table has no column with the class's name.
  std::optional<confusion_matrix> matrix;
};

// Writes the table's cells unchanged and, after them, the columns "predicted" and "probability" or,
// with all probabilities, "predicted" and one "P(class)" for each class. Columns are found by name.
// Throws table_error if a column is missing or a cell is not of the data type of the tree's
// attribute; the rows before it are then written.
classification_result classify_table(const std::string& path, const decision_tree& tree,
                                     const classification_options& options, std::ostream& out);

}  // namespace arbor::tree

#endif
