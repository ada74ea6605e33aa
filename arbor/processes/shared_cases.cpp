#include "arbor/processes/shared_cases.h"

#include <algorithm>
#include <limits>

namespace arbor::tree {

namespace {

struct part_of_cases {
  std::uint64_t cases = 0;
  float least_weight = std::numeric_limits<float>::infinity();
  float greatest_weight = -std::numeric_limits<float>::infinity();

  void add(const impls::w_sequence& sequence) {
    cases += sequence.size();
    for (const auto& [row, weight] : sequence) {
      least_weight = std::min(least_weight, weight);
      greatest_weight = std::max(greatest_weight, weight);
    }
  }
  void add(const part_of_cases& part) {
    cases += part.cases;
    least_weight = std::min(least_weight, part.least_weight);
    greatest_weight = std::max(greatest_weight, part.greatest_weight);
  }
};

unsigned int even_weight_of(const part_of_cases& all) {
  constexpr unsigned int most = 1U << 24U;  // float holds all whole numbers up to here
  if (all.cases == 0 || all.least_weight != all.greatest_weight) return 0;
  if (!(all.least_weight >= 1 && all.least_weight <= static_cast<float>(most))) return 0;
  const auto weight = static_cast<unsigned int>(all.least_weight);
  if (static_cast<float>(weight) != all.least_weight) return 0;
  return weight <= most / all.cases ? weight : 0;
}

}  // namespace

void count_cases(process_group& group, shared_cases& node) {
  part_of_cases own;
  for (const auto& sequence : node.sequences) own.add(*sequence);
  part_of_cases all;
  for (const part_of_cases& part : group.gathered(std::vector<part_of_cases>{own})) all.add(part);
  node.all = all.cases;
  node.even_weight = even_weight_of(all);
}

shared_cases shared_root(process_group& group, const table& training,
                         const impls::w_sequence& cases) {
  node_cases own = root_cases(training, cases);
  shared_cases root{std::move(own.rows), {std::move(own.cases)}, std::move(own.ranges)};
  count_cases(group, root);
  return root;
}

node_summary summary_of(process_group& group, const shared_cases& node) {
  std::vector<double> sums(node.rows->class_column().get_distinct(), 0.0);
  add_cases_up(group, node, sums, [](std::vector<double>& of_classes, const node_cases& cases) {
    add_class_weights(cases.rows->class_column(), *cases.cases, of_classes);
  });
  return {node.all, sums, node.depth};
}

}  // namespace arbor::tree
