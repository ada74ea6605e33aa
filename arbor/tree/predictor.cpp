#include "arbor/tree/predictor.h"

#include <algorithm>
#include <utility>

namespace arbor::tree {

namespace {

// There may be many leaves and many classes, but no more probabilities are kept than this.
constexpr std::size_t most_kept = 1U << 18U;

}  // namespace

scored_case prediction::score(std::size_t actual, double weight) {
  if (last.actual != actual) last = scored(actual, distribution, 1);
  last.weight = weight;
  return last;
}

predictor::predictor(std::shared_ptr<const class_probabilities> of_tree)
    : ways(std::move(of_tree)),
      kept(std::clamp<std::size_t>(most_kept / ways->class_count(), 1, ways->node_count())) {}

prediction& predictor::at_leaf(std::size_t leaf) {
  kept_prediction& place = kept[leaf % kept.size()];
  if (place.leaf != leaf) place = {leaf, prediction(ways->at_node(leaf))};
  return place.at_leaf;
}

}  // namespace arbor::tree
