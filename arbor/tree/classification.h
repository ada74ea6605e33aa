// Classifies cases with a tree.
//
//   text_classifier classify(tree);
//   std::vector<const char*> texts{"sunny", nullptr};  // by attribute of the tree; null is unknown
//   std::vector<double> distribution = classify(texts);
//
// A case goes down the branch of its value. If the value is unknown, or no training case of the
// node had it, the case goes down every branch, its weight multiplied by the branch's share. The
// distributions of all leaves that it reaches are added up.
#ifndef ARBOR_TREE_CLASSIFICATION_H
#define ARBOR_TREE_CLASSIFICATION_H

#include <stdexcept>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/tree/confusion_matrix.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// The entry of the class with the greatest probability; of equal ones the first.
std::size_t likeliest_class(const std::vector<double>& distribution);

// Classifies the rows of a table: the one that the tree was grown on, or another whose columns have
// the same data types. Columns are found by name. Tree and table must outlive the classifier and
// stay unchanged. Throws std::runtime_error if the table lacks an attribute of the tree.
class row_classifier {
 public:
  row_classifier(const decision_tree& tree, const table& rows);

  // The probability of each class; entry c is that of the class with code c + 1.
  std::vector<double> operator()(unsigned int row) const;

  // The part (0 to 1) of a row's weight that comes to a node, given by its index in the tree.
  double weight_at(unsigned int row, std::size_t node) const;

 private:
  unsigned int branch_of(std::size_t node, unsigned int row) const;

  const decision_tree& tree;
  std::vector<const impls::column*> columns;  // of the table, by attribute of the tree
  // By discrete attribute and code of the table: the code of the same value in the tree.
  std::vector<std::vector<unsigned int>> codes;
  // By node: the greatest code of the table that goes down the low branch.
  std::vector<unsigned int> thresholds;
  std::vector<std::size_t> parents;  // by node
};

// Thrown for a text that is not of the data type of its attribute.
class unfit_text : public std::runtime_error {
 public:
  explicit unfit_text(std::size_t of_attribute)
      : std::runtime_error("a text is not of the data type of its attribute"),
        attribute(of_attribute) {}

  std::size_t attribute;  // its index in the tree
};

// Classifies cases given as texts. The tree must outlive the classifier.
class text_classifier {
 public:
  explicit text_classifier(const decision_tree& tree);

  // `texts` has an entry for each attribute of the tree: the text as it stands in a table, null for
  // the unknown value. Throws unfit_text for the first text that is not of the data type or reads
  // as not a number, unless it is the text of the unknown value in the attribute's domain.
  std::vector<double> operator()(const std::vector<const char*>& texts);

 private:
  // A value as tests compare it: of a continuous attribute the number, of a discrete one the code.
  struct value {
    bool known = false;
    double number = 0;
    unsigned int code = 0;
  };
  // Throws std::runtime_error for a text that is not of the data type.
  using number_reader = double (*)(const char* text);

  static number_reader reader_for(const impls::column& attribute);
  value read(std::size_t attribute, const char* text) const;

  const decision_tree& tree;
  std::vector<number_reader> readers;  // by attribute, for continuous ones
  std::vector<double> thresholds;      // by node
  std::vector<value> values;           // by attribute, of the present case
};

// Classifies cases of a table that has the tree's class column, and compares with their classes.
confusion_matrix classify_cases(const decision_tree& tree, const table& rows,
                                const impls::w_sequence& cases);

// The cases of a table that come to a node, given by its index in the tree: in the order of the
// rows, each with its row's weight multiplied by the part that comes down. Cases without weight are
// left out. The table is as for row_classifier.
impls::w_sequence cases_at_node(const decision_tree& tree, const table& rows, std::size_t node);

}  // namespace arbor::tree

#endif
