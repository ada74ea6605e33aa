#include "arbor/processes/shared_node.h"

#include <utility>

#include "arbor/processes/shared_rating.h"
#include "arbor/tree/growing/threshold.h"

namespace arbor::tree {

shared_node::shared_node(process_group& of_processes, shared_cases of_node,
                         const grow_options& chosen)
    : growing_node(summary_of(of_processes, of_node)),
      group(of_processes),
      options(chosen),
      node(std::move(of_node)),
      columns(testable_columns(*node.rows)) {}

void shared_node::rate(std::size_t /*piece*/) {
  std::vector<std::size_t> too_wide;  // as in test_search
  for (const std::size_t index : columns) {
    if (node.ranges[index].second - node.ranges[index].first > node.all) too_wide.push_back(index);
  }
  narrow_ranges(group, node, too_wide);
  const gain_by_chance chance(summary().class_weights);
  splits = rate_shared(group, node, columns,
                       {summary().weight, options.min_weight, chance, rating_need::choice});
}

std::shared_ptr<node_split> shared_node::split() {
  const std::optional<rated_test> best = best_test(columns, splits);
  if (splits.empty() || !best) return nullptr;
  return std::make_shared<shared_split>(group, std::move(node), summary().weight, *best, options);
}

shared_split::shared_split(process_group& of_processes, shared_cases of_node, float node_weight,
                           const rated_test& test, const grow_options& chosen_options)
    : node_split(test), group(of_processes), options(chosen_options), node(std::move(of_node)) {
  if (node.column(chosen.column_index).is_discrete()) {
    divide_by_value(node_weight);
  } else {
    divide_at_threshold(node_weight);
  }
  node.sequences.clear();
}

void shared_split::divide_at_threshold(float node_weight) {
  const std::size_t index = chosen.column_index;
  const unsigned int threshold = threshold_code(node.column(index), cut_of(chosen.rating));
  std::vector<std::array<std::size_t, 2>> own_known;  // cases, by sequence
  std::vector<side_weights> weights(1);
  const auto weigh = [&](std::size_t i) {
    const std::array<std::size_t, 2> before = weights[0].known_cases;
    weights[0] = weigh_sides(node.sequence(i), index, threshold, weights[0]);
    const std::array<std::size_t, 2>& after = weights[0].known_cases;
    own_known.push_back({after[0] - before[0], after[1] - before[1]});
  };
  if (node.is_even()) {
    for (std::size_t i = 0; i < node.sequences.size(); ++i) weigh(i);
    const std::vector<side_weights> of_processes = group.gathered(weights);
    weights[0] = {};
    for (const side_weights& of_process : of_processes) weights[0].add(of_process);
  } else {
    for (std::size_t i = 0; i < node.sequences.size(); ++i)
      group.pass_on(weights, [&] { weigh(i); });
  }
  const std::array<side_shape, 2> shapes = weights[0].sides(threshold, node_weight);
  for (std::size_t i = 0; i < node.sequences.size(); ++i) {
    sides.push_back(
        tree::divide_at_threshold(node.sequence(i), index, threshold, own_known[i], shapes));
    node.sequences[i].reset();
  }
  for (unsigned int number : {1U, 2U})
    all_branches.push_back({number, shapes[number - 1].share, weights[0].known_cases[number - 1]});
  unknown = weights[0].unknown_cases;
}

void shared_split::divide_by_value(float node_weight) {
  const std::size_t index = chosen.column_index;
  std::vector<std::uint64_t> counts(node.ranges[index].second - node.ranges[index].first + 1ULL, 0);
  groups.reserve(node.sequences.size());
  for (std::size_t i = 0; i < node.sequences.size(); ++i) {
    groups.emplace_back(node.sequence(i), index);
    node.sequences[i].reset();
    const std::vector<std::uint64_t> own = groups.back().counts();
    for (std::size_t value = 0; value < counts.size(); ++value) counts[value] += own[value];
  }
  group.add_up(counts);
  std::vector<float> weights(counts.size(), 0.0F);
  if (node.is_even()) {
    for (std::size_t value = 0; value < counts.size(); ++value)
      weights[value] = static_cast<float>(counts[value] * node.even_weight);
  } else {
    for (const value_groups& of_sequence : groups)
      group.pass_on(weights, [&] { of_sequence.add_weights(weights); });
  }
  all_branches = branches_by_value(counts, weights, node_weight, groups.front().code_of(1));
  unknown = counts[0];
}

std::unique_ptr<growing_node> shared_split::take(const branch& taken) {
  shared_cases part = take_own(taken);
  count_cases(group, part);
  return std::make_unique<shared_node>(group, std::move(part), options);
}

shared_cases shared_split::take_own(const branch& taken) {
  shared_cases part{node.rows, {}, node.ranges, node.depth + 1};
  code_range& range = part.ranges[chosen.column_index];
  for (std::array<side_cases, 2>& of_sequence : sides) {
    side_cases& side = of_sequence[taken.number - 1];
    range = side.range;
    part.sequences.push_back(std::move(side.cases));
  }
  const auto add = [&](auto add_to) {
    auto cases = std::make_shared<impls::w_sequence>();
    add_to(*cases);
    part.sequences.push_back(std::move(cases));
  };
  for (const value_groups& known : groups) {
    range = {taken.number, taken.number + 1};
    add([&](impls::w_sequence& to) { known.add_known(known.value_of(taken.number), to); });
  }
  if (unknown == 0) return part;
  for (const value_groups& all : groups)
    add([&](impls::w_sequence& to) { all.add_unknown(taken.share, to); });
  return part;
}

}  // namespace arbor::tree
