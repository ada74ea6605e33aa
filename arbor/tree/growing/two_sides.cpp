#include "arbor/tree/growing/two_sides.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/weight_if.h"

namespace arbor::tree {

namespace {

using impls::w_sequence;

// What the first pass finds. Of each pair, the first is of the low side.
struct side_weights {
  std::array<std::size_t, 2> known_cases{};
  std::array<float, 2> known_weight{};
  // The same in double, where light cases are not lost in the rounding, and the unknown weight.
  std::array<double, 2> exact_weight{};
  double unknown_weight = 0;
  unsigned int before_least_code = std::numeric_limits<unsigned int>::max();
  unsigned int greatest_code = 0;
};

// Neither pass branches on the side of a case, which is hard to predict. `side_weights` is returned
// by value and the function not inlined, so that the sums stay in registers.
template <bool HasUnknown, class CodeOf>
[[gnu::noinline]] side_weights weigh_sides(const w_sequence& cases, CodeOf code_of,
                                           unsigned int threshold) {
  side_weights result;
  for (const auto& [row, weight] : cases) {
    const unsigned int code = code_of(row);
    const unsigned int before = code - 1;  // the greatest number for the unknown value
    result.before_least_code = std::min(result.before_least_code, before);
    result.greatest_code = std::max(result.greatest_code, code);
    const auto low = static_cast<unsigned int>(before < threshold);
    const auto high = static_cast<unsigned int>(code > threshold);
    const float low_weight = impls::weight_if(low, weight);  // adding 0 leaves a sum as it is
    const float high_weight = impls::weight_if(high, weight);
    result.known_cases[0] += low;
    result.known_cases[1] += high;
    result.known_weight[0] += low_weight;
    result.known_weight[1] += high_weight;
    if constexpr (HasUnknown) {
      result.exact_weight[0] += static_cast<double>(low_weight);
      result.exact_weight[1] += static_cast<double>(high_weight);
      result.unknown_weight += static_cast<double>(impls::weight_if(1 - low - high, weight));
    }
  }
  return result;
}

// The sides' shares. Where there is unknown weight it belongs to neither side: a column's partition
// counts it in the low branch's weight, so that each unknown case would be worth more than one.
std::array<float, 2> shares_of(const side_weights& weights, float node_weight) {
  std::array<float, 2> shares{};
  for (std::size_t side = 0; side < 2; ++side) {
    shares[side] = static_cast<float>(
        weights.unknown_weight > 0
            ? weights.exact_weight[side] / (weights.exact_weight[0] + weights.exact_weight[1])
            : static_cast<double>(weights.known_weight[side]) / static_cast<double>(node_weight));
  }
  return shares;
}

// Leaves out what is behind `end`.
void cut_to(w_sequence& cases, const w_sequence::value_type* end) {
  cases.resize(static_cast<std::size_t>(end - cases.data()));
  if (cases.size() < cases.capacity() / 2) cases.shrink_to_fit();
}

// The second pass. Each known case is written to the next place of either side, and stays where it
// belongs; so there is a place more than cases.
template <class CodeOf>
std::array<w_sequence, 2> copy_sides(const node_cases& node, CodeOf code_of, unsigned int threshold,
                                     const side_weights& weights,
                                     const std::array<float, 2>& shares) {
  const std::size_t unknown_cases =
      node.cases->size() - weights.known_cases[0] - weights.known_cases[1];
  std::array<w_sequence, 2> sides{w_sequence(weights.known_cases[0] + unknown_cases + 1),
                                  w_sequence(weights.known_cases[1] + unknown_cases + 1)};
  auto* low = sides[0].data();
  auto* high = sides[1].data();
  const auto add_part = [&](auto*& next, const auto& weighted, float share) {
    *next = {weighted.first, share * weighted.second};
    next += is_sliver(*next, *node.rows) ? 0 : 1;
  };
  for (const auto& weighted : *node.cases) {
    const unsigned int code = code_of(weighted.first);
    if (code != 0) {
      const auto is_high = static_cast<std::size_t>(code > threshold);
      *low = weighted;
      *high = weighted;
      low += 1 - is_high;
      high += is_high;
    } else {
      add_part(low, weighted, shares[0]);
      add_part(high, weighted, shares[1]);
    }
  }
  cut_to(sides[0], low);
  cut_to(sides[1], high);
  return sides;
}

}  // namespace

std::array<side_cases, 2> divide_at_threshold(const node_cases& node, float node_weight,
                                              std::size_t column_index, unsigned int threshold) {
  const impls::column& attribute = *node.rows->columns()[column_index];
  std::array<side_cases, 2> result{};
  impls::with_codes(attribute, [&](auto code_of) {
    const side_weights weights = attribute.get_o_set()->contains_null()
                                     ? weigh_sides<true>(*node.cases, code_of, threshold)
                                     : weigh_sides<false>(*node.cases, code_of, threshold);
    const std::array<float, 2> shares = shares_of(weights, node_weight);
    std::array<w_sequence, 2> sides = copy_sides(node, code_of, threshold, weights, shares);
    const code_range low{std::min(weights.before_least_code, threshold - 1) + 1, threshold + 1};
    const code_range high{threshold, std::max(weights.greatest_code, threshold) + 1};
    result[0] = {std::make_shared<const w_sequence>(std::move(sides[0])), shares[0], low};
    result[1] = {std::make_shared<const w_sequence>(std::move(sides[1])), shares[1], high};
  });
  return result;
}

}  // namespace arbor::tree
