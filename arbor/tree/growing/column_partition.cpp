#include "arbor/tree/growing/column_partition.h"

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>

#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

namespace {

using impls::column;
using impls::w_sequence;

// Weighs the unknown cases on a side of the threshold anew, by the side's share of the known weight
// alone. A column's partition counts them in the low branch's weight as well, so that each would be
// worth more than one case.
void share_out_unknown(const column& attribute, const w_sequence& all, unsigned int threshold,
                       unsigned int number, w_sequence& part, float& share) {
  const auto side_of = [&](const auto& weighted) -> std::size_t {
    const unsigned int code = attribute.get_row_index(weighted.first);
    return code == 0 ? 0 : code <= threshold ? 1 : 2;
  };
  std::array<double, 3> weights{};  // of the unknown cases and of both sides
  for (const auto& weighted : all)
    weights[side_of(weighted)] += static_cast<double>(weighted.second);
  if (!(weights[0] > 0)) return;
  share = static_cast<float>(weights[number] / (weights[1] + weights[2]));
  auto whole = all.begin();  // both are in the same order
  for (auto& weighted : part) {
    if (side_of(weighted) != 0) continue;
    whole =
        std::find_if(whole, all.end(), [&](const auto& w) { return w.first == weighted.first; });
    if (whole == all.end())
      throw std::logic_error("a column's partition has not kept the order of its cases");
    weighted.second = share * whole->second;
  }
}

}  // namespace

side_cases partition_by_column(const case_rows& rows, const w_sequence& cases, float node_weight,
                               const rated_test& test, unsigned int number) {
  const column& attribute = *rows.columns()[test.column_index];
  column::partition_desc split;
  split.branches = test.rating.branches;
  if (attribute.is_continuous()) split.threshold = threshold_text(attribute, cut_of(test.rating));
  side_cases result{};
  const std::shared_ptr<w_sequence> part(attribute.partition(
      cases.begin(), cases.end(), number, node_weight, result.share, result.range, split));
  if (attribute.get_o_set()->contains_null()) {
    if (attribute.is_continuous()) {
      share_out_unknown(attribute, cases, threshold_code(attribute, cut_of(test.rating)), number,
                        *part, result.share);
    }
    part->erase(std::remove_if(part->begin(), part->end(),
                               [&](const auto& weighted) { return is_sliver(weighted, rows); }),
                part->end());
  }
  result.cases = part;
  return result;
}

}  // namespace arbor::tree
