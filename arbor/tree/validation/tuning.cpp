#include "arbor/tree/validation/tuning.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

#include "arbor/tree/classification.h"
#include "arbor/tree/evaluation.h"
#include "arbor/tree/growing/growth.h"
#include "arbor/tree/pruning.h"
#include "arbor/tree/validation/folds.h"
#include "arbor/tree/validation/side_by_side.h"
#include "arbor/tree/validation/trial_tree.h"

namespace arbor::tree {

namespace {

// How badly a tree predicts held-back cases: the sum of the share of errors and the Brier score,
// times the weight of the cases; and its leaves. Less is better.
using trial = std::pair<double, std::size_t>;

trial try_tree(const decision_tree& tree, const table& rows, const impls::w_sequence& held_back) {
  const evaluation quality = classify_cases(tree, rows, held_back);
  const confusion_matrix& matrix = quality.matrix();
  return {matrix.errors() + quality.brier_score() * matrix.total(), size_of(tree).leaves};
}

// The trials of all confidences. They prune the same nodes.
std::vector<trial> try_confidences(const table& training, const divided_cases& cases,
                                   const grow_options& options) {
  const grown_nodes grown = grow_unpruned(training, cases.training, options);
  std::vector<trial> trials;
  for (const float confidence : tuned_confidences) {
    grown_nodes pruned = grown;
    prune(pruned.nodes, confidence);
    const trial_tree pruned_tree(
        to_tree(training, std::move(pruned), codes_among(training, cases.training)));
    trials.push_back(try_tree(pruned_tree.tree, training, cases.held_back));
  }
  return trials;
}

// By minimum weight, then by fold, then by confidence.
using all_trials = std::vector<std::vector<trial>>;

grow_options with_best_pair(const grow_options& options, const all_trials& trials) {
  const std::size_t folds = trials.size() / tuned_min_weights.size();
  grow_options best = options;
  best.prune = true;
  std::optional<trial> least;
  for (std::size_t weight = 0; weight < tuned_min_weights.size(); ++weight) {
    for (std::size_t confidence = 0; confidence < tuned_confidences.size(); ++confidence) {
      trial sum{0, 0};
      for (std::size_t fold = 0; fold < folds; ++fold) {
        const auto& [loss, leaves] = trials[weight * folds + fold][confidence];
        sum.first += loss;
        sum.second += leaves;
      }
      if (least && sum >= *least) continue;
      least = sum;
      best.min_weight = tuned_min_weights[weight];
      best.confidence = tuned_confidences[confidence];
    }
  }
  return best;
}

}  // namespace

grow_options tuned_options(const table& training, const impls::w_sequence& cases,
                           const grow_options& options, std::mt19937_64& random) {
  constexpr std::size_t most_folds = 10;
  const std::size_t folds = std::min(most_folds, cases.size());
  if (folds < 2) return options;
  const std::vector<unsigned int> fold_of_case =
      deal_folds(training.class_column(), cases, static_cast<unsigned int>(folds), random);
  all_trials trials(tuned_min_weights.size() * folds);
  grow_side_by_side(training, options, trials.size(), [&](std::size_t i, grow_options own) {
    own.min_weight = tuned_min_weights[i / folds];
    const auto fold = static_cast<unsigned int>(i % folds);
    trials[i] = try_confidences(training, hold_out_fold(cases, fold_of_case, fold), own);
  });
  return with_best_pair(options, trials);
}

}  // namespace arbor::tree
