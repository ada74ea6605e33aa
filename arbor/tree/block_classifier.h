// Classifies the rows of a block of a CSV file. Blocks can be classified on several threads.
//
//   block_classifier classify(file, tree, cells, options, true);
//   classified_rows classified;
//   for (std::size_t next = 0; next < block.rows();) {
//     next = classify(block, next, classified);
//     out << classified.text;
//   }
#ifndef ARBOR_TREE_BLOCK_CLASSIFIER_H
#define ARBOR_TREE_BLOCK_CLASSIFIER_H

#include <cstddef>
#include <exception>
#include <optional>
#include <string>
#include <vector>

#include "arbor/csv/csv_table.h"
#include "arbor/tree/evaluation.h"
#include "arbor/tree/table_classification.h"
#include "arbor/tree/text_classifier.h"

namespace arbor::tree {

// The cells of a row that are used.
struct used_cells {
  std::vector<std::size_t> attributes;  // by attribute of the tree
  std::optional<std::size_t> actual;    // class
  std::optional<std::size_t> weight;
  std::optional<std::size_t> id;  // the only one that is written, if there is one
};

// The texts of an attribute that are no numbers.
struct stray_texts {
  std::size_t count = 0;
  std::string first;  // in quotes
  std::string file;   // in which it is, as messages name it
  unsigned long long line = 0;

  // Adds those of later rows.
  void add(const stray_texts& later);
};

struct classified_rows {
  std::size_t rows = 0;
  std::string text;                 // as they are written; empty if they are not
  std::vector<scored_case> cases;   // the rows that can be evaluated
  std::vector<stray_texts> strays;  // by attribute of the tree
  std::exception_ptr error;         // what is wrong with the row after them, if anything is
};

// Everything that it is constructed with must outlive it. A copy can be used by another thread.
class block_classifier {
 public:
  block_classifier(const csv_table& file, const decision_tree& tree, const used_cells& cells,
                   const classification_options& options, bool writes);

  // Classifies rows from the one with this number on, as many as there are or until a megabyte has
  // been written: the probabilities of many classes may take far more room than the row. Replaces
  // `result`, whose storage is used again. Returns the number of the next row.
  std::size_t operator()(const csv_block& block, std::size_t next, classified_rows& result);

 private:
  void classify(const csv_row& row, classified_rows& result);
  void take_stray(const csv_row& row, std::size_t attribute, stray_texts& strays) const;
  std::size_t class_of(cell_text text);
  std::string text_of(const std::vector<double>& distribution) const;
  cell_text known_cell(const csv_row& row, std::size_t cell) const;

  const csv_table& file;
  const decision_tree& tree;
  const used_cells& cells;
  const classification_options& options;
  bool writes_rows;
  text_classifier predict;
  value_reader read_class;
  std::vector<cell_text> texts;  // by attribute, of the present row
};

}  // namespace arbor::tree

#endif
