#include "arbor/model/measure/sparse_class_table.h"

#include <algorithm>

namespace arbor::impls {

// In a pass of its own, so that there is one loop for each kind of column and not for each pair.
void sparse_class_table::read_classes(const column& class_column, std::vector<known_case>& known) {
  with_codes(class_column, [&](auto class_of) {
    for (known_case& c : known) {
      const unsigned int class_code = class_of(c.row);
      class_totals[class_code] += c.weight;
      c.pair |= class_code;
    }
  });
}

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
