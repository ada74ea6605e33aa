#include "arbor/tree/rating.h"

#include <algorithm>

#include "arbor/table/value_text.h"
#include "arbor/tree/threshold.h"

namespace arbor::tree {

namespace {

using impls::column;

split_rating split_rating_of(const column::splitting_desc& best, const column& attribute) {
  split_rating result;
  result.gain = best.gain;
  result.split_info = best.split_info;
  result.gain_ratio = best.split_info > 0 ? best.gain / best.split_info : 0;
  result.branches = best.branches;
  if (attribute.is_continuous()) {
    result.threshold = shortest_value(attribute, threshold_code(attribute, cut_of(best)));
  }
  return result;
}

const char* why_no_split(const column& attribute, unsigned int values) {
  if (attribute.is_ignore()) return "ignored";
  if (values == 0) return "no known value";
  if (values == 1) return "a single value";
  if (attribute.is_discrete()) return "fewer than two heavy values";
  return "no threshold pays";
}

}  // namespace

std::vector<attribute_rating> rate_attributes(const table& rated, const impls::w_sequence& cases,
                                              float min_weight) {
  std::vector<attribute_rating> ratings;
  // A measure that may copy the cases does not reorder them.
  auto& unchanged = const_cast<impls::w_sequence&>(cases);
  const float weight = total_weight(cases);
  for (const auto& attribute : rated.columns) {
    if (!is_attribute(*attribute)) continue;
    attribute_rating rating;
    rating.name = attribute->get_name();
    rating.kind = attribute->get_type();
    rating.data_type = attribute->get_o_set()->get_datatype();
    rating.values = attribute->get_o_set()->size_of_known();
    rating.unknown_cells = unknown_cells(*attribute, cases);
    auto code_range = occurring_range(*attribute, cases);
    column::splitting_desc best;
    attribute->quality_measure(&rated.class_column(), weight, &unchanged, code_range, min_weight,
                               nullptr, best, true);
    if (best.gain != column::splitting_desc::no_split) {
      rating.split = split_rating_of(best, *attribute);
    } else {
      rating.no_split_reason = why_no_split(*attribute, rating.values);
    }
    ratings.push_back(std::move(rating));
  }
  return ratings;
}

void sort_ratings(std::vector<attribute_rating>& ratings, rating_order order) {
  const auto key = [order](const attribute_rating& rating) {
    if (!rating.split) return column::splitting_desc::no_split;
    return order == rating_order::gain ? rating.split->gain : rating.split->gain_ratio;
  };
  std::stable_sort(ratings.begin(), ratings.end(),
                   [&](const attribute_rating& a, const attribute_rating& b) {
                     return order == rating_order::name ? a.name < b.name : key(a) > key(b);
                   });
}

}  // namespace arbor::tree
