// Classifies cases that are given as texts with a tree.
//
//   text_classifier classify(tree);
//   std::vector<const char*> texts{"sunny", nullptr};  // by attribute of the tree; null is unknown
//   std::vector<double> distribution = classify(texts);
//
// class_distribution.h says which way a case goes.
#ifndef ARBOR_TREE_TEXT_CLASSIFIER_H
#define ARBOR_TREE_TEXT_CLASSIFIER_H

#include <cstddef>
#include <vector>

#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

// Classifies cases given as texts. The tree must outlive the classifier.
class text_classifier {
 public:
  explicit text_classifier(const decision_tree& tree,
                           leaf_estimate estimate = leaf_estimate::smoothed);

  // `texts` has an entry for each attribute of the tree: the text as it stands in a table, null for
  // the unknown value. Numbers are compared as numbers, whatever the data type of the attribute: of
  // the type float they are rounded first, as they were when the tree was grown. A text that is no
  // number, where the attribute has numbers, is an unknown value.
  std::vector<double> operator()(const std::vector<const char*>& texts);

  // The attributes, by index in the tree, of which the last case had a text that is no number. Not
  // among them are those with the text that the attribute's domain has for the unknown value.
  const std::vector<std::size_t>& unfit() const { return unfit_attributes; }

 private:
  // A value as tests compare it: of a continuous attribute the number, of a discrete one the code.
  struct value {
    bool known = false;
    double number = 0;
    unsigned int code = 0;
  };

  bool read(std::size_t attribute, const char* text, value& result) const;

  const decision_tree& tree;
  class_probabilities probabilities;
  std::vector<bool> rounds;                   // by attribute: whether it is of the type float
  std::vector<double> thresholds;             // by node
  std::vector<value> values;                  // by attribute, of the present case
  std::vector<std::size_t> unfit_attributes;  // of the present case
};

}  // namespace arbor::tree

#endif
