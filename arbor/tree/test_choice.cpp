#include "arbor/tree/test_choice.h"

#include <vector>

namespace arbor::tree {

namespace {

using impls::column;

void rate(rated_test& test, node_cases& node, float node_weight, float min_weight) {
  const column& attribute = *node.rows->columns()[test.column_index];
  code_range& range = node.ranges[test.column_index];
  // Reading every case once is cheaper than rating a range with more codes than there are cases.
  const bool too_wide = range.second - range.first > node.cases->size();
  if (too_wide) range = occurring_range(attribute, *node.cases);
  // A measure that may copy the cases does not reorder them, so that each attribute is rated on the
  // same order and several threads may share them.
  auto& unchanged = const_cast<impls::w_sequence&>(*node.cases);
  attribute.quality_measure(&node.rows->class_column(), node_weight, &unchanged, range, min_weight,
                            nullptr, test.rating, true);
}

std::vector<rated_test> rated_tests(node_cases& node, float node_weight, float min_weight,
                                    thread_pool* pool) {
  std::vector<rated_test> tests;
  for (std::size_t i = 0; i < node.rows->columns().size(); ++i) {
    if (is_testable(*node.rows->columns()[i])) tests.push_back({i, {}});
  }
  const auto rate_one = [&](std::size_t i) { rate(tests[i], node, node_weight, min_weight); };
  if (pool != nullptr) {
    pool->for_each(tests.size(), rate_one);
  } else {
    for (std::size_t i = 0; i < tests.size(); ++i) rate_one(i);
  }
  return tests;
}

double average_gain(const std::vector<rated_test>& tests) {
  double gains = 0;
  std::size_t splits = 0;
  for (const rated_test& test : tests) {
    if (!(test.rating.gain > 0)) continue;
    gains += static_cast<double>(test.rating.gain);
    ++splits;
  }
  return gains / static_cast<double>(splits);
}

double gain_ratio(const rated_test& test) {
  return static_cast<double>(test.rating.gain) / static_cast<double>(test.rating.split_info);
}

}  // namespace

std::optional<rated_test> best_test(node_cases& node, float node_weight, float min_weight,
                                    thread_pool* pool) {
  const std::vector<rated_test> tests = rated_tests(node, node_weight, min_weight, pool);
  const double average = average_gain(tests);
  std::optional<rated_test> best;
  for (const rated_test& test : tests) {
    if (!(test.rating.gain > 0) || static_cast<double>(test.rating.gain) < average) continue;
    if (!best || gain_ratio(test) > gain_ratio(*best)) best = test;
  }
  return best;
}

}  // namespace arbor::tree
