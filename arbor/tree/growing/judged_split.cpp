#include "arbor/tree/growing/judged_split.h"

#include <cmath>
#include <numeric>
#include <type_traits>
#include <vector>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/discrete_quality.h"
#include "arbor/model/measure/rainforest_quality.h"
#include "arbor/model/measure/sparse_class_table.h"

namespace arbor::tree {

namespace {

using impls::column;

// In bits per unit of the weight of all cases of the node.
struct value_charge {
  double charged = 0;    // for the number of values
  double most_gain = 0;  // the gain of values that tell the class of every case
};

template <class Table>
value_charge charge(const Table& table, double all_weight, const gain_by_chance& chance) {
  constexpr double charged = 1.5;
  double by_chance = 0;
  double known_weight = 0;
  unsigned int values = 0;
  for (unsigned int i = 1; i < table.rows(); ++i) {
    const auto weights = table.weights_in_row(i);
    const auto weight = static_cast<double>(std::accumulate(
        weights.begin(), weights.end(), std::decay_t<decltype(*weights.begin())>()));
    if (!(weight > 0)) continue;
    by_chance += weight * chance.of_value(weight);
    known_weight += weight;
    ++values;
  }
  if (values <= 2) return {};
  return {charged * by_chance * (values - 2) / (values - 1) / all_weight,
          chance.of_value(1) * known_weight / all_weight};
}

template <class Table>
value_charge charge(const Table& table, const rated_node& node) {
  const auto all_weight = static_cast<double>(node.weight);
  if (!(table.unknown_weight() > 0)) return charge(table, all_weight, node.chance);
  // The gain is that of the known cases, whose classes may be others.
  const gain_by_chance of_known(
      present_classes(std::vector<float>(table.totals(), table.totals() + table.classes())));
  return charge(table, all_weight, of_known);
}

float judged_gain(float gain, const value_charge& many) {
  return gain > 0 ? static_cast<float>(static_cast<double>(gain) - many.charged) : gain;
}

// Calls `use` with the table of an attribute's values and the classes.
template <class Use>
void with_table(const column& attribute, code_range range, const rated_cases& of_node, Use use) {
  // To clear and to read a table of far more cells than cases takes longer than to sort the cases,
  // and its memory would be out of proportion to theirs.
  constexpr std::size_t most_cells_per_case = 16;
  const std::size_t cells =
      (range.second - range.first) * static_cast<std::size_t>(of_node.class_column.get_distinct());
  impls::with_codes(attribute, [&](auto code_of) {
    if (cells > most_cells_per_case * of_node.cases.size()) {
      use(impls::sparse_class_table(code_of, of_node.class_column, of_node.cases, range));
    } else {
      impls::with_class_table(code_of, of_node.class_column, of_node.cases, range, use);
    }
  });
}

// As a discrete attribute would rate itself, but rated and judged by one table: reading the cases
// takes most of the time.
template <class Table>
judged_split rate_discrete_table(const column& attribute, const Table& table,
                                 const rated_node& node) {
  judged_split result;
  column::splitting_desc& rating = result.rating;
  rating.branches = attribute.get_o_set()->size_of_known();
  rating.split_column = const_cast<column*>(&attribute);  // handed out, not changed
  const value_charge many = charge(table, node);
  rating.set_no_split();
  if (node.need == rating_need::all || !(many.charged > 0) || many.charged < many.most_gain)
    impls::rate_discrete(table, node.weight, node.min_weight, rating);
  result.judged_gain = judged_gain(rating.gain, many);
  return result;
}

judged_split rate_discrete_split(const column& attribute, code_range range,
                                 const rated_cases& of_node) {
  judged_split result;
  with_table(attribute, range, of_node, [&](const auto& table) {
    result = rate_discrete_table(attribute, table, of_node.node);
  });
  return result;
}

template <class Weight>
judged_split rate_continuous_table(const column& attribute, code_range range,
                                   const impls::class_table<Weight>& table, std::size_t cases,
                                   const rated_node& node) {
  judged_split result;
  result.rating.branches = 2;
  result.rating.split_column = const_cast<column*>(&attribute);
  impls::rate_rainforest(table, range.first, node.weight, cases, node.min_weight, nullptr,
                         result.rating);
  result.judged_gain = result.rating.gain;
  return result;
}

judged_split rate_any_split(const column& attribute, code_range range, const rated_cases& of_node) {
  judged_split result;
  // A measure that may copy the cases does not reorder them.
  auto& unchanged = const_cast<impls::w_sequence&>(of_node.cases);
  attribute.quality_measure(&of_node.class_column, of_node.node.weight, &unchanged, range,
                            of_node.node.min_weight, nullptr, result.rating, true);
  result.judged_gain = result.rating.gain;
  return result;
}

judged_split rate_and_judge(const column& attribute, code_range range, const rated_cases& of_node) {
  const bool judged = attribute.is_discrete() && range.second - range.first > 2;
  if (judged && impls::is_library_column(attribute))
    return rate_discrete_split(attribute, range, of_node);
  judged_split result = rate_any_split(attribute, range, of_node);
  // A class derived by a user may rate itself in its own way.
  if (judged) {
    with_table(attribute, range, of_node, [&](const auto& table) {
      result.judged_gain = judged_gain(result.rating.gain, charge(table, of_node.node));
    });
  }
  return result;
}

bool is_finite(const judged_split& split) {
  return std::isfinite(split.rating.gain) && std::isfinite(split.rating.split_info) &&
         std::isfinite(split.judged_gain) && std::isfinite(static_cast<float>(split.gain_ratio()));
}

judged_split with_finite_numbers(judged_split split) {
  split.finite = is_finite(split);
  if (!split.finite) {
    split.rating.set_no_split();
    split.judged_gain = split.rating.gain;
  }
  return split;
}

}  // namespace

double judged_split::gain_ratio() const {
  return rating.split_info > 0
             ? static_cast<double>(rating.gain) / static_cast<double>(rating.split_info)
             : 0;
}

judged_split rate_split(const column& attribute, code_range range, const rated_cases& of_node) {
  return with_finite_numbers(rate_and_judge(attribute, range, of_node));
}

template <class Weight>
judged_split rate_table(const column& attribute, code_range range,
                        const impls::class_table<Weight>& table, std::size_t cases,
                        const rated_node& node) {
  return with_finite_numbers(attribute.is_discrete()
                                 ? rate_discrete_table(attribute, table, node)
                                 : rate_continuous_table(attribute, range, table, cases, node));
}

template judged_split rate_table(const column&, code_range, const impls::class_table<float>&,
                                 std::size_t, const rated_node&);
template judged_split rate_table(const column&, code_range, const impls::class_table<unsigned int>&,
                                 std::size_t, const rated_node&);

}  // namespace arbor::tree
