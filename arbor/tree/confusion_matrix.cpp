#include "arbor/tree/confusion_matrix.h"

namespace arbor::tree {

void confusion_matrix::add(std::size_t actual, std::size_t said, double weight) {
  cells[{actual, said}] += weight;
  all += weight;
  if (actual != said) wrong += weight;
}

double confusion_matrix::at(std::size_t actual, std::size_t said) const {
  const auto found = cells.find({actual, said});
  return found == cells.end() ? 0 : found->second;
}

}  // namespace arbor::tree
