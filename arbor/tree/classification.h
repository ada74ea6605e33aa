// What a tree says of cases.
//
//   text_classifier say(tree);
//   std::vector<const char*> texts{"sunny", nullptr};  // by attribute of the tree; null is unknown
//   std::vector<double> distribution = say(texts);
//
// A case goes down the branch of its value. When the value is unknown, or no training case of the
// node had it, the case goes down every branch, its weight multiplied by the branch's share; the
// distributions of all leaves it comes to are added up.
#ifndef ARBOR_TREE_CLASSIFICATION_H
#define ARBOR_TREE_CLASSIFICATION_H

#include <stdexcept>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/tree/confusion_matrix.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tree {

// The class of the greatest probability, as an entry of a distribution; of equal ones the first.
std::size_t likeliest_class(const std::vector<double>& distribution);

// Classifies the rows of a table, the one that the tree was grown on or another whose columns have
// the same data types. Neither may change while the classifier is used. Throws std::runtime_error
// when the table lacks a column of the tree.
class row_classifier {
 public:
  row_classifier(const decision_tree& tree, const table& rows);

  // The probability of each class, entry c that of the class with code c + 1.
  std::vector<double> operator()(unsigned int row) const;

  // What of a row's weight of 1 comes to a node.
  double weight_at(unsigned int row, std::size_t node) const;

 private:
  unsigned int branch_of(std::size_t node, unsigned int row) const;

  const decision_tree& tree;
  std::vector<const impls::column*> columns;  // of the table, by attribute of the tree
  std::vector<std::vector<unsigned int>>
      codes;  // of the tree, by discrete attribute and code of the table
  std::vector<unsigned int>
      thresholds;  // by node: the greatest code of the table that goes down the low branch
  std::vector<std::size_t> parents;  // by node
};

// A text that is not of the data type of its attribute.
class unfit_text : public std::runtime_error {
 public:
  explicit unfit_text(std::size_t of_attribute)
      : std::runtime_error("a text is not of the data type of its attribute"),
        attribute(of_attribute) {}

  std::size_t attribute;
};

// Classifies cases that are given as texts.
class text_classifier {
 public:
  explicit text_classifier(const decision_tree& tree);

  // `texts` are those of the tree's attributes, as they stand in a table, null for the unknown
  // value. Throws unfit_text.
  std::vector<double> operator()(const std::vector<const char*>& texts);

 private:
  // A value as the tests read it: a number for a continuous attribute, a code for a discrete one.
  struct value {
    bool known = false;
    double number = 0;
    unsigned int code = 0;
  };

  static value read(const impls::column& attribute, const char* text);

  const decision_tree& tree;
  std::vector<double> thresholds;  // by node
  std::vector<value> values;       // by attribute, of the case at hand
};

// Classifies cases of the table that the tree was grown on.
confusion_matrix classify_cases(const decision_tree& tree, const table& rows,
                                const impls::w_sequence& cases);

// The cases of a table that come to a node, in the order of the rows: each with the weight of its
// row, multiplied by the part of it that comes down. Cases of no weight are left out. `node` is an
// index of the tree's nodes; the table is as for row_classifier.
impls::w_sequence cases_at_node(const decision_tree& tree, const table& rows, std::size_t node);

}  // namespace arbor::tree

#endif
