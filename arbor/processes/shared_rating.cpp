#include "arbor/processes/shared_rating.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

#include "arbor/processes/rating_by_cases.h"
#include "arbor/processes/rating_by_tables.h"
#include "arbor/tree/growing/rating_of_splits.h"

namespace arbor::tree {

namespace {

// Whether sending the cases of a column takes less than its table, or the cases themselves are
// needed.
bool goes_by_cases(const shared_cases& node, std::size_t index) {
  const impls::column& attribute = node.column(index);
  const code_range& range = node.ranges[index];
  if (attribute.is_continuous() && !is_rated_by_table(node.all, range)) return true;
  const std::uint64_t cells =
      (range.second - range.first) * std::uint64_t{node.rows->class_column().get_distinct()};
  return cells > 2 * node.all;
}

// No case is needed to say that a column has no split, or it is not for splits.
bool is_rated_at_sight(const shared_cases& node, std::size_t index) {
  const code_range& range = node.ranges[index];
  return range.second - range.first <= 1 || !is_testable(node.column(index));
}

}  // namespace

void narrow_ranges(process_group& group, shared_cases& node,
                   const std::vector<std::size_t>& columns) {
  if (columns.empty()) return;
  constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();
  std::vector<std::uint32_t> before_least(columns.size(), none);
  std::vector<std::uint32_t> end(columns.size(), 0);
  for (std::size_t i = 0; i < columns.size(); ++i) {
    for (const auto& sequence : node.sequences) {
      const code_range range = occurring_range(node.column(columns[i]), *sequence);
      if (range.second == 0) continue;
      before_least[i] = std::min(before_least[i], range.first - 1);
      end[i] = std::max(end[i], range.second);
    }
  }
  group.take_least(before_least);
  group.take_greatest(end);
  for (std::size_t i = 0; i < columns.size(); ++i)
    node.ranges[columns[i]] = {end[i] == 0 ? 0 : before_least[i] + 1, end[i]};
}

std::vector<judged_split> rate_shared(process_group& group, const shared_cases& node,
                                      const std::vector<std::size_t>& columns,
                                      const rated_node& known) {
  std::vector<judged_split> splits(columns.size());
  std::vector<shared_attribute> by_tables;
  std::vector<shared_attribute> by_cases;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    const std::size_t index = columns[i];
    if (is_rated_at_sight(node, index)) {
      splits[i] = rate_split(node.column(index), node.ranges[index],
                             {*node.sequences.front(), node.rows->class_column(), known});
    } else {
      (goes_by_cases(node, index) ? by_cases : by_tables)
          .push_back({i, &node.column(index), node.ranges[index]});
    }
  }
  std::vector<shared_result> own = rate_by_tables(group, node, by_tables, known);
  for (const shared_result& result : rate_by_cases(group, node, by_cases, known))
    own.push_back(result);
  for (const shared_result& result : group.gathered(own))
    splits[result.entry] = result.split(node.column(columns[result.entry]));
  return splits;
}

table_rating rate_shared_attributes(process_group& group, const table& rated,
                                    const impls::w_sequence& cases, float min_weight) {
  group.enter("rating");
  shared_cases root = shared_root(group, rated, cases);
  std::vector<std::size_t> attributes;
  std::vector<std::uint64_t> unknown;
  for (std::size_t i = 0; i < rated.columns.size(); ++i) {
    if (!is_attribute(*rated.columns[i])) continue;
    attributes.push_back(i);
    unknown.push_back(unknown_cells(*rated.columns[i], cases));
  }
  group.add_up(unknown);
  narrow_ranges(group, root, attributes);
  const node_summary summary = summary_of(group, root);
  const gain_by_chance chance(summary.class_weights);
  const std::vector<judged_split> splits =
      rate_shared(group, root, attributes, {summary.weight, min_weight, chance, rating_need::all});
  return rating_of_splits(rated, splits, {unknown.begin(), unknown.end()});
}

}  // namespace arbor::tree
