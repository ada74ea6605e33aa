#include "arbor/tree/growing/test_choice.h"

namespace arbor::tree {

namespace {

using impls::column;

// Whether a tree may test the attribute.
bool is_eligible(const judged_split& split) {
  return split.judged_gain > 0;
}

double average_judged_gain(const std::vector<judged_split>& splits) {
  double gains = 0;
  std::size_t counted = 0;
  for (const judged_split& split : splits) {
    if (!is_eligible(split)) continue;
    gains += static_cast<double>(split.judged_gain);
    ++counted;
  }
  return counted == 0 ? 0 : gains / static_cast<double>(counted);
}

}  // namespace

split_choice choose(const std::vector<judged_split>& splits) {
  split_choice result{average_judged_gain(splits), std::nullopt};
  for (std::size_t i = 0; i < splits.size(); ++i) {
    if (!is_eligible(splits[i])) continue;
    if (static_cast<double>(splits[i].judged_gain) < result.average_judged_gain) continue;
    if (!result.best || splits[i].gain_ratio() > splits[*result.best].gain_ratio()) result.best = i;
  }
  return result;
}

std::vector<std::size_t> testable_columns(const case_rows& rows) {
  std::vector<std::size_t> result;
  for (std::size_t i = 0; i < rows.columns().size(); ++i) {
    if (is_testable(*rows.columns()[i])) result.push_back(i);
  }
  return result;
}

std::optional<rated_test> best_test(const std::vector<std::size_t>& column_indices,
                                    const std::vector<judged_split>& splits) {
  const split_choice choice = choose(splits);
  if (!choice.best) return std::nullopt;
  return rated_test{column_indices[*choice.best], splits[*choice.best].rating};
}

test_search::test_search(node_cases& rated, const std::vector<weighted_class>& class_weights,
                         float node_weight, float min_weight)
    : node(rated),
      chance(class_weights),
      of_node{*node.cases,
              node.rows->class_column(),
              {node_weight, min_weight, chance, rating_need::choice}},
      column_indices(testable_columns(*node.rows)),
      splits(column_indices.size()) {}

void test_search::rate(std::size_t i) {
  const std::size_t column_index = column_indices[i];
  const column& attribute = *node.rows->columns()[column_index];
  code_range& range = node.ranges[column_index];
  // Reading every case once is cheaper than rating a range with more codes than there are cases.
  const bool too_wide = range.second - range.first > node.cases->size();
  if (too_wide) range = occurring_range(attribute, *node.cases);
  splits[i] = rate_split(attribute, range, of_node);
}

}  // namespace arbor::tree
