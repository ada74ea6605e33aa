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
#include <stdexcept>
#include <vector>

#include "arbor/tree/class_distribution.h"

namespace arbor::tree {

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
  explicit text_classifier(const decision_tree& tree,
                           leaf_estimate estimate = leaf_estimate::smoothed);

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
  class_probabilities probabilities;
  std::vector<number_reader> readers;  // by attribute, for continuous ones
  std::vector<double> thresholds;      // by node
  std::vector<value> values;           // by attribute, of the present case
};

}  // namespace arbor::tree

#endif
