#include "arbor/model/measure/class_table.h"

namespace arbor::impls {

void class_counts::finish(unsigned int weight) {
  weigh(weight);
  add_up();
}

// From counts to weights: exact, like all sums of them.
void class_counts::weigh(unsigned int weight) {
  if (weight == 1) return;
  unknown *= weight;
  for (std::size_t i = 0; i < cells.size(); ++i) cells[i] *= weight;
}

// The sums are exact in any order, so the cells are added up; no case is read again.
void class_counts::add_up() {
  // Adds several rows at once while there are many: with a single sum, each addition would wait for
  // the one before.
  constexpr std::size_t enough_sums = 64;
  std::size_t first = stride;
  if (cells.size() > 4 * enough_sums) {
    const std::size_t width = stride * std::max<std::size_t>(1, enough_sums / stride);
    strata::util::work_array<unsigned int, enough_sums> sums(width);
    for (; first + width <= cells.size(); first += width) {
      for (std::size_t i = 0; i < width; ++i) sums[i] += cells[first + i];
    }
    for (std::size_t i = 0; i < width; ++i) class_totals[i % stride] += sums[i];
  }
  for (; first < cells.size(); first += stride) {
    for (std::size_t c = 0; c < stride; ++c) class_totals[c] += cells[first + c];
  }
}

}  // namespace arbor::impls
