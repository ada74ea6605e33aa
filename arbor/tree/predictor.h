// Predicts the classes of one case after another.
//
//   predictor predict(std::make_shared<class_probabilities>(tree, thresholds));
//   const prediction& here = predict([&](unsigned int attribute) { return values[attribute]; });
#ifndef ARBOR_TREE_PREDICTOR_H
#define ARBOR_TREE_PREDICTOR_H

#include <cstddef>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "arbor/tree/class_distribution.h"
#include "arbor/tree/evaluation.h"

namespace arbor::tree {

class prediction {
 public:
  prediction() = default;
  // `of_classes` has the probability of each class; entry c is that of the class with code c + 1.
  explicit prediction(std::vector<double> of_classes) : distribution(std::move(of_classes)) {}

  // The same as `scored` returns, which is kept for one class: most cases at a leaf have the same.
  scored_case score(std::size_t actual, double weight);

  std::vector<double> distribution;
  // For whoever writes the prediction, to do so once for all cases at a leaf; empty at first.
  std::string text;

 private:
  scored_case last{std::numeric_limits<std::size_t>::max(), 0, 0, 0, 0};
};

// Nearly all cases reach a single leaf, where the tree predicts the same for each. Predictions at
// leaves are therefore kept. A copy shares the probabilities and can be used by another thread.
class predictor {
 public:
  explicit predictor(std::shared_ptr<const class_probabilities> of_tree);

  const class_probabilities& probabilities() const { return *ways; }

  // `value_of` is as for class_probabilities. Valid until the next call.
  template <class ValueOf>
  prediction& operator()(ValueOf value_of);

 private:
  struct kept_prediction {
    std::size_t leaf = class_probabilities::none;
    prediction at_leaf;
  };

  prediction& at_leaf(std::size_t leaf);

  std::shared_ptr<const class_probabilities> ways;
  std::vector<kept_prediction> kept;  // that of a leaf has the place of its index modulo the size
  prediction at_leaves;               // of a case that reaches several
};

// -- Implementation --

template <class ValueOf>
prediction& predictor::operator()(ValueOf value_of) {
  const std::size_t leaf = ways->leaf_of(value_of);
  if (leaf != class_probabilities::none) return at_leaf(leaf);
  at_leaves = prediction(ways->of_case(value_of));
  return at_leaves;
}

}  // namespace arbor::tree

#endif
