#include "arbor/tree/validation/cross_validation.h"

#include <algorithm>
#include <map>
#include <random>
#include <string>

#include "arbor/tree/classification.h"
#include "arbor/tree/validation/folds.h"
#include "arbor/tree/validation/random_order.h"
#include "arbor/tree/validation/side_by_side.h"
#include "arbor/tree/validation/trial_tree.h"
#include "arbor/tree/validation/tuning.h"

namespace arbor::tree {

namespace {

// Every fold deals all folds of its repeat again: that is cheap, and no repeat waits for another.
divided_cases cases_of(const table& rows, const validation_options& options,
                       const fold_result& part) {
  std::mt19937_64 random = generator_of({options.seed, part.repeat});
  return hold_out_fold(rows.cases,
                       deal_folds(rows.class_column(), rows.cases, options.folds, random),
                       part.fold - 1);
}

// A column that the tree does not test has no loss.
std::vector<validated_attribute> validate_attributes(const decision_tree& tree, const table& rows,
                                                     const impls::w_sequence& held_back,
                                                     const evaluation& quality,
                                                     std::mt19937_64& random) {
  const std::vector<permutation_loss> losses =
      permutation_losses(tree, rows, held_back, quality, random);
  std::map<std::string, permutation_loss> tested;
  for (std::size_t i = 0; i < losses.size(); ++i)
    tested.emplace(tree.attributes[i]->get_name(), losses[i]);
  std::vector<validated_attribute> result;
  for (const auto& column : rows.columns) {
    const auto loss = tested.find(column->get_name());
    result.push_back(loss == tested.end() ? validated_attribute()
                                          : validated_attribute{1, loss->second});
  }
  return result;
}

void validate_fold(const table& rows, const validation_options& options, grow_options grow,
                   fold_result& part) {
  const divided_cases cases = cases_of(rows, options, part);
  std::mt19937_64 random = generator_of({options.seed, part.repeat, part.fold});
  if (options.tune) {
    grow = tuned_options(rows, cases.training, grow, random);
    grow.progress = nullptr;  // the last tree is a small part of the work
  }
  const trial_tree trial(grow_tree(rows, cases.training, grow));
  const decision_tree& tree = trial.tree;
  part.size = size_of(tree);
  part.min_weight = grow.min_weight;
  if (grow.prune) part.confidence = grow.confidence;
  part.quality = classify_cases(tree, rows, cases.held_back);
  if (options.importance)
    part.attributes = validate_attributes(tree, rows, cases.held_back, part.quality, random);
}

void add_attributes(validation& result, const fold_result& part) {
  const double share = part.quality.matrix().total() / result.quality.matrix().total();
  result.attributes.resize(part.attributes.size());
  for (std::size_t i = 0; i < part.attributes.size(); ++i) {
    result.attributes[i].trees += part.attributes[i].trees;
    result.attributes[i].loss.log_loss += share * part.attributes[i].loss.log_loss;
    result.attributes[i].loss.accuracy += share * part.attributes[i].loss.accuracy;
  }
}

template <class Member>
double mean_of_folds(const validation& result, Member tree_size::*member) {
  double sum = 0;
  for (const fold_result& part : result.folds) sum += static_cast<double>(part.size.*member);
  return sum / static_cast<double>(result.folds.size());
}

}  // namespace

validation cross_validate(const table& rows, const validation_options& options) {
  validation result;
  for (unsigned int repeat = 1; repeat <= options.repeats; ++repeat) {
    for (unsigned int fold = 1; fold <= options.folds; ++fold)
      result.folds.push_back({repeat, fold, {}, {}, 0, {}, {}});
  }
  grow_side_by_side(rows, options.grow, result.folds.size(),
                    [&](std::size_t i, const grow_options& grow) {
                      validate_fold(rows, options, grow, result.folds[i]);
                    });
  for (const fold_result& part : result.folds) result.quality.add(part.quality);
  for (const fold_result& part : result.folds) add_attributes(result, part);
  result.quality = result.quality.mean_of(options.repeats);
  return result;
}

double mean_leaves(const validation& result) {
  return mean_of_folds(result, &tree_size::leaves);
}

double mean_depth(const validation& result) {
  return mean_of_folds(result, &tree_size::depth);
}

}  // namespace arbor::tree
