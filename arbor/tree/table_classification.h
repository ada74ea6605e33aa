// Classifies the rows of a table's files block by block, so that these may be of any length.
#ifndef ARBOR_TREE_TABLE_CLASSIFICATION_H
#define ARBOR_TREE_TABLE_CLASSIFICATION_H

#include <cstddef>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "arbor/csv/input_options.h"
#include "arbor/csv/input_remark.h"
#include "arbor/tree/class_distribution.h"
#include "arbor/tree/evaluation.h"

namespace arbor::tree {

// The name of the first column that is added to a table; more of them follow it if it is taken.
inline constexpr const char* predicted_column = "predicted";

struct classification_options {
  // The column of the actual classes, which the table must have. Empty: the column with the name of
  // the tree's class, if there is one.
  std::string class_name;
  // The column of the rows' weights in the evaluation; a row of weight 0 is left out of it. Empty
  // if every row weighs 1.
  std::string weights_name;
  // What messages call these choices, so that a person knows where they were made.
  std::string class_from = "the class";
  std::string weights_from = "the weights";
  input_options input;
  // The only column of the table that is written. Empty: all of them.
  std::string id_name;
  std::string id_from = "the identifiers";
  // Whether a text that is no number, in an attribute of numbers, is refused. Otherwise it is an
  // unknown value. In a row of weight 0 it always is.
  bool strict = false;
  leaf_estimate estimate = leaf_estimate::smoothed;  // of the probabilities
  bool all_probabilities = false;                    // a column for each class instead of one
  unsigned int threads = 0;                          // 0: as many as the machine has cores
  // Called now and then with the number of rows so far, by one thread at a time. May be empty.
  std::function<void(std::size_t rows)> progress;
};

struct classification_result {
  std::size_t rows = 0;
  // Of the rows whose class is known and whose weight is above 0; absent if there are none. The
  // entry after the last of the tree's classes is for all other classes.
  std::optional<evaluation> quality;
  // What a person should know, a line each that names the file: for each attribute of numbers, how
  // many texts were no numbers.
  std::vector<std::string> remarks;
  // How messages name the table, and how its bytes were understood.
  std::string table_name;
  std::vector<input_remark> input_remarks;
};

// Writes to `rows`, unless it is null, the table's cells unchanged, between the delimiters of the
// first file, and after them the columns "predicted" and "probability" or, with all probabilities,
// "predicted" and one "P(class)" for each class. Columns are found by name. Throws table_error if a
// column is missing or, in a strict classification, a text is no number; the rows before it are
// then written. The result is the same for any number of threads.
classification_result classify_table(const std::vector<std::string>& paths,
                                     const decision_tree& tree,
                                     const classification_options& options, std::ostream* rows);
inline classification_result classify_table(const std::string& path, const decision_tree& tree,
                                            const classification_options& options,
                                            std::ostream* rows) {
  return classify_table(std::vector<std::string>{path}, tree, options, rows);
}

// Writes rows that have been classified. Throws table_error if that fails.
void write_rows(std::ostream& out, std::string_view text);

}  // namespace arbor::tree

#endif
