#include "arbor/model/measure/sparse_class_table.h"

#include <algorithm>

namespace arbor::impls {

void sparse_class_table::add_up(std::vector<known_case> known) {
  std::stable_sort(known.begin(), known.end(),
                   [](const known_case& a, const known_case& b) { return a.pair < b.pair; });
  row_begins.push_back(0);
  std::uint64_t code = 0;
  for (std::size_t i = 0; i < known.size(); ++i) {
    const std::uint64_t pair = known[i].pair;
    if (pair >> 32U != code) row_begins.push_back(weights.size());
    code = pair >> 32U;
    if (i == 0 || known[i - 1].pair != pair) weights.push_back(0);
    weights.back() += known[i].weight;
  }
}

}  // namespace arbor::impls
