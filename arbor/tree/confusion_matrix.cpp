#include "arbor/tree/confusion_matrix.h"

namespace arbor::tree {

void confusion_matrix::add(std::size_t actual, std::size_t predicted, double weight) {
  cells[{actual, predicted}] += weight;
  all += weight;
  if (actual != predicted) wrong += weight;
}

double confusion_matrix::at(std::size_t actual, std::size_t predicted) const {
  const auto found = cells.find({actual, predicted});
  return found == cells.end() ? 0 : found->second;
}

}  // namespace arbor::tree
