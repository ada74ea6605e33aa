// Classifies cases that are given as texts with a tree.
//
//   text_classifier classify(tree);
//   std::vector<double> distribution = classify({row.cell(3), row.cell(0)}).distribution;
//
// class_distribution.h says which way a case goes.
#ifndef ARBOR_TREE_TEXT_CLASSIFIER_H
#define ARBOR_TREE_TEXT_CLASSIFIER_H

#include <cstddef>
#include <vector>

#include "arbor/csv/cell_text.h"
#include "arbor/tree/predictor.h"
#include "arbor/tree/value_reader.h"

namespace arbor::tree {

// By node, for class_probabilities: the threshold as value_reader reads it.
std::vector<double> threshold_numbers(const decision_tree& tree);

// Classifies cases given as texts. The tree must outlive the classifier. A copy can be used by
// another thread.
class text_classifier {
 public:
  // `form` is how the numbers of the texts are written.
  explicit text_classifier(const decision_tree& tree,
                           leaf_estimate estimate = leaf_estimate::smoothed,
                           const number_form& form = {});

  // `texts` has an entry for each attribute of the tree: the text as it stands in a table, without
  // a beginning for the unknown value. Numbers are compared as numbers, whatever the data type of
  // the attribute. A text that is no number, where the attribute has numbers, is an unknown value.
  // The result is valid until the next call.
  prediction& operator()(const std::vector<cell_text>& texts);

  // The attributes, by index in the tree, of which the last case had a text that is no number. Not
  // among them are those with the text that the attribute's domain has for the unknown value.
  const std::vector<std::size_t>& unfit() const { return unfit_attributes; }

 private:
  const decision_tree* tree;
  std::vector<value_reader> readers;  // by attribute
  predictor predict;
  std::vector<double> values;                 // by attribute, of the present case
  std::vector<std::size_t> unfit_attributes;  // of the present case
};

}  // namespace arbor::tree

#endif
