// How often a class was said of which class.
#ifndef ARBOR_TREE_CONFUSION_MATRIX_H
#define ARBOR_TREE_CONFUSION_MATRIX_H

#include <cstddef>
#include <map>
#include <utility>

namespace arbor::tree {

// Counts weights, and only pairs that occur: there may be as many classes as cases.
class confusion_matrix {
 public:
  void add(std::size_t actual, std::size_t said, double weight);

  double at(std::size_t actual, std::size_t said) const;
  double total() const { return all; }
  double errors() const { return wrong; }
  // The pairs (actual, said) with their weights, in order.
  const std::map<std::pair<std::size_t, std::size_t>, double>& pairs() const { return cells; }

 private:
  std::map<std::pair<std::size_t, std::size_t>, double> cells;
  double all = 0;
  double wrong = 0;
};

}  // namespace arbor::tree

#endif
