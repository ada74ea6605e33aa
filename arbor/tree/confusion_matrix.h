// The weight of the cases of each actual class for which each class was predicted.
//
//   confusion_matrix matrix;
//   matrix.add(0, 1, 2.5);  // cases of class 0, weighing 2.5, were predicted to be of class 1
//   double rate = matrix.errors() / matrix.total();
#ifndef ARBOR_TREE_CONFUSION_MATRIX_H
#define ARBOR_TREE_CONFUSION_MATRIX_H

#include <cstddef>
#include <map>
#include <utility>

namespace arbor::tree {

// Adds up weights. Only pairs that occur take memory: there may be as many classes as cases.
class confusion_matrix {
 public:
  using pair_weights = std::map<std::pair<std::size_t, std::size_t>, double>;

  confusion_matrix() = default;
  // That of cases which have been added elsewhere: what the functions of the same names return.
  confusion_matrix(pair_weights pairs, double total, double errors)
      : cells(std::move(pairs)), all(total), wrong(errors) {}

  void add(std::size_t actual, std::size_t predicted, double weight);

  double at(std::size_t actual, std::size_t predicted) const;
  double total() const { return all; }
  // The weight of the cases whose predicted class is not the actual one.
  double errors() const { return wrong; }
  // The pairs (actual, predicted) with their weights, in ascending order.
  const pair_weights& pairs() const { return cells; }

 private:
  pair_weights cells;
  double all = 0;
  double wrong = 0;
};

}  // namespace arbor::tree

#endif
