#include "arbor/tree/growing/two_sides.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/weight_if.h"

namespace arbor::tree {

namespace {

using impls::w_sequence;

// Neither pass branches on the side of a case, which is hard to predict. `side_weights` is returned
// by value and the function not inlined, so that the sums stay in registers.
template <bool HasUnknown, class CodeOf>
[[gnu::noinline]] side_weights weigh(const w_sequence& cases, CodeOf code_of,
                                     unsigned int threshold, side_weights result) {
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
    if constexpr (HasUnknown) result.unknown_cases += 1 - low - high;
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

// Leaves out what is behind `end`.
void cut_to(w_sequence& cases, const w_sequence::value_type* end) {
  cases.resize(static_cast<std::size_t>(end - cases.data()));
  if (cases.size() < cases.capacity() / 2) cases.shrink_to_fit();
}

// The second pass. Each known case is written to the next place of either side, and stays where it
// belongs; so there is a place more than cases.
template <class CodeOf>
std::array<w_sequence, 2> copy_sides(const node_cases& node, CodeOf code_of, unsigned int threshold,
                                     const std::array<std::size_t, 2>& known_cases,
                                     const std::array<side_shape, 2>& shapes) {
  const std::size_t unknown_cases = node.cases->size() - known_cases[0] - known_cases[1];
  std::array<w_sequence, 2> sides{w_sequence(known_cases[0] + unknown_cases + 1),
                                  w_sequence(known_cases[1] + unknown_cases + 1)};
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
      add_part(low, weighted, shapes[0].share);
      add_part(high, weighted, shapes[1].share);
    }
  }
  cut_to(sides[0], low);
  cut_to(sides[1], high);
  return sides;
}

}  // namespace

void side_weights::add(const side_weights& others) {
  for (std::size_t side = 0; side < 2; ++side) {
    known_cases[side] += others.known_cases[side];
    known_weight[side] += others.known_weight[side];
    exact_weight[side] += others.exact_weight[side];
  }
  unknown_cases += others.unknown_cases;
  unknown_weight += others.unknown_weight;
  before_least_code = std::min(before_least_code, others.before_least_code);
  greatest_code = std::max(greatest_code, others.greatest_code);
}

// Where there is unknown weight it belongs to neither side: a column's partition counts it in the
// low branch's weight, so that each unknown case would be worth more than one.
std::array<side_shape, 2> side_weights::sides(unsigned int threshold, float node_weight) const {
  std::array<side_shape, 2> result{};
  for (std::size_t side = 0; side < 2; ++side) {
    result[side].share = static_cast<float>(
        unknown_weight > 0
            ? exact_weight[side] / (exact_weight[0] + exact_weight[1])
            : static_cast<double>(known_weight[side]) / static_cast<double>(node_weight));
  }
  result[0].range = {std::min(before_least_code, threshold - 1) + 1, threshold + 1};
  result[1].range = {threshold, std::max(greatest_code, threshold) + 1};
  return result;
}

side_weights weigh_sides(const node_cases& node, std::size_t column_index, unsigned int threshold,
                         side_weights before) {
  const impls::column& attribute = *node.rows->columns()[column_index];
  side_weights weights;
  impls::with_codes(attribute, [&](auto code_of) {
    weights = attribute.get_o_set()->contains_null()
                  ? weigh<true>(*node.cases, code_of, threshold, before)
                  : weigh<false>(*node.cases, code_of, threshold, before);
  });
  return weights;
}

std::array<side_cases, 2> divide_at_threshold(const node_cases& node, std::size_t column_index,
                                              unsigned int threshold,
                                              const std::array<std::size_t, 2>& known_cases,
                                              const std::array<side_shape, 2>& sides) {
  std::array<side_cases, 2> result{};
  impls::with_codes(*node.rows->columns()[column_index], [&](auto code_of) {
    std::array<w_sequence, 2> cases = copy_sides(node, code_of, threshold, known_cases, sides);
    for (std::size_t side = 0; side < 2; ++side) {
      result[side] = {std::make_shared<const w_sequence>(std::move(cases[side])), sides[side].share,
                      sides[side].range};
    }
  });
  return result;
}

}  // namespace arbor::tree
