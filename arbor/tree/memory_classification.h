// Classifies rows of columns in memory.
//
//   const std::vector<const memory_column*> columns = ...;   // by attribute of the tree
//   std::vector<unsigned int> classes(rows);
//   classify_columns(tree, columns, rows, {}, classes.data(), nullptr);
#ifndef ARBOR_TREE_MEMORY_CLASSIFICATION_H
#define ARBOR_TREE_MEMORY_CLASSIFICATION_H

#include <cstddef>
#include <functional>
#include <vector>

#include "arbor/table/memory_column.h"
#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

struct memory_classification_options {
  leaf_estimate estimate = leaf_estimate::smoothed;  // of the probabilities
  // The number of threads, 0 for one on each core. The result is the same for any number.
  unsigned int threads = 0;
  // Called now and then by any of the threads. What it throws ends the work and is rethrown. May be
  // empty.
  std::function<void()> check;
};

// Writes to `classes` the entry (the code less 1) of the class that is predicted for each row, and
// to `probabilities`, unless it is null, that of each class for one row after the other. The result
// is that of text_classifier for the cells that the columns would be written to a file as: a text
// where the attribute has numbers is unknown. Throws std::bad_alloc, and std::runtime_error, naming
// the column, for a text with a zero byte.
void classify_columns(const decision_tree& tree, const std::vector<const memory_column*>& columns,
                      std::size_t rows, const memory_classification_options& options,
                      unsigned int* classes, double* probabilities);

}  // namespace arbor::tree

#endif
