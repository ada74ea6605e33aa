// Classifies the rows of a table in memory with a tree.
//
//   row_classifier classify(tree, golf);
//   std::vector<double> distribution = classify(0).distribution;
//   evaluation quality = classify_cases(tree, golf, golf.cases);
//
// class_distribution.h says which way a case goes, text_classifier.h classifies texts.
#ifndef ARBOR_TREE_CLASSIFICATION_H
#define ARBOR_TREE_CLASSIFICATION_H

#include <cstddef>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/tree/class_distribution.h"
#include "arbor/tree/decision_tree.h"
#include "arbor/tree/evaluation.h"
#include "arbor/tree/predictor.h"

namespace arbor::tree {

// Classifies the rows of a table: the one that the tree was grown on, or another. Columns are found
// by name, and numbers are compared as numbers, as text_classifier compares those of the cells,
// even if the column has another data type than the attribute. Tree and table must outlive the
// classifier and stay unchanged.
class row_classifier {
 public:
  // Throws std::bad_alloc, and std::runtime_error if the table lacks an attribute of the tree or
  // has texts where the attribute is continuous.
  row_classifier(const decision_tree& tree, const table& rows,
                 leaf_estimate estimate = leaf_estimate::smoothed);

  // Valid until the next call.
  prediction& operator()(unsigned int row);

  // The same for a row that has another row's value of one attribute, given by its index in the
  // tree.
  prediction& with_value_of(unsigned int row, unsigned int attribute, unsigned int other);

  // The part (0 to 1) of a row's weight that comes to a node, given by its index in the tree.
  double weight_at(unsigned int row, std::size_t node) const;

 private:
  double value(unsigned int attribute, unsigned int row) const;

  const decision_tree& tree;
  std::vector<const impls::column*> columns;  // of the table, by attribute of the tree
  // By discrete attribute and code of the table: the code of the same value in the tree. Tests of
  // continuous attributes compare codes of the table.
  std::vector<std::vector<unsigned int>> codes;
  predictor predict;
};

// Classifies cases of a table that has the tree's class column, and compares with their classes.
evaluation classify_cases(const decision_tree& tree, const table& rows,
                          const impls::w_sequence& cases);

// The same for all rows of any table that has a column of the tree's class. Classes that the tree
// does not have count as one, the entry after the last class of the tree.
evaluation classify_rows(const decision_tree& tree, const table& rows);

// The cases of a table that come to a node, given by its index in the tree: in the order of the
// rows, each with its row's weight multiplied by the part that comes down. Cases without weight are
// left out. The table is as for row_classifier.
impls::w_sequence cases_at_node(const decision_tree& tree, const table& rows, std::size_t node);

}  // namespace arbor::tree

#endif
