#include "arbor/tree/rating.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "arbor/table/decimal_domain.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/growing/rating_of_splits.h"
#include "arbor/tree/growing/test_choice.h"
#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

namespace {

using impls::column;

split_rating split_rating_of(const judged_split& judged, const column& attribute) {
  const column::splitting_desc& best = judged.rating;
  split_rating result;
  result.gain = best.gain;
  result.judged_gain = judged.judged_gain;
  result.split_info = best.split_info;
  result.gain_ratio = static_cast<float>(judged.gain_ratio());
  result.branches = best.branches;
  if (attribute.is_continuous()) {
    result.threshold = shortest_value(attribute, threshold_code(attribute, cut_of(best)));
  }
  return result;
}

const char* why_no_split(const column& attribute, unsigned int values, bool finite) {
  if (!finite) return "its rating is not a finite number";
  if (attribute.is_ignore()) return "ignored";
  if (values == 0) return "no known value";
  if (values == 1) return "a single value";
  if (attribute.is_discrete()) return "fewer than two heavy values";
  return "no threshold pays";
}

attribute_rating rating_of(const column& attribute, std::size_t unknown_cells,
                           const judged_split& split) {
  attribute_rating rating;
  rating.name = attribute.get_name();
  rating.kind = attribute.get_type();
  rating.data_type = data_type_of(attribute);
  rating.values = attribute.get_o_set()->size_of_known();
  rating.unknown_cells = unknown_cells;
  if (split.exists()) {
    rating.split = split_rating_of(split, attribute);
  } else {
    rating.no_split_reason = why_no_split(attribute, rating.values, split.finite);
  }
  return rating;
}

}  // namespace

table_rating rate_attributes(const table& rated, const impls::w_sequence& cases, float min_weight) {
  std::vector<judged_split> splits;
  std::vector<std::size_t> unknown;
  const gain_by_chance chance(present_classes(class_weights(rated.class_column(), cases)));
  const rated_cases of_node{
      cases, rated.class_column(), {total_weight(cases), min_weight, chance, rating_need::all}};
  for (const auto& attribute : rated.columns) {
    if (!is_attribute(*attribute)) continue;
    splits.push_back(rate_split(*attribute, occurring_range(*attribute, cases), of_node));
    unknown.push_back(unknown_cells(*attribute, cases));
  }
  return rating_of_splits(rated, splits, unknown);
}

table_rating rating_of_splits(const table& rated, const std::vector<judged_split>& splits,
                              const std::vector<std::size_t>& unknown_cells) {
  table_rating result;
  result.attributes.reserve(splits.size());
  for (const auto& attribute : rated.columns) {
    if (!is_attribute(*attribute)) continue;
    const std::size_t i = result.attributes.size();
    result.attributes.push_back(rating_of(*attribute, unknown_cells[i], splits[i]));
  }
  const split_choice choice = choose(splits);
  result.average_judged_gain = choice.average_judged_gain;
  if (choice.best) result.attributes[*choice.best].chosen = true;
  return result;
}

void sort_ratings(std::vector<attribute_rating>& ratings, rating_order order) {
  const auto key = [order](const attribute_rating& rating) {
    if (!rating.split) return column::splitting_desc::no_split;
    return order == rating_order::gain ? rating.split->gain : rating.split->gain_ratio;
  };
  std::vector<std::size_t> from(ratings.size());  // by place
  std::iota(from.begin(), from.end(), std::size_t{0});
  std::stable_sort(from.begin(), from.end(), [&](std::size_t a, std::size_t b) {
    return order == rating_order::name ? ratings[a].name < ratings[b].name
                                       : key(ratings[a]) > key(ratings[b]);
  });
  // In place, cycle by cycle: a second copy of the ratings of a million columns takes 200 MB.
  for (std::size_t first = 0; first < from.size(); ++first) {
    std::size_t place = first;
    while (from[place] != first) {
      std::swap(ratings[place], ratings[from[place]]);
      place = std::exchange(from[place], place);
    }
    from[place] = place;
  }
}

}  // namespace arbor::tree
