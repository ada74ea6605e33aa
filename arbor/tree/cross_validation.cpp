#include "arbor/tree/cross_validation.h"

#include <mutex>
#include <random>

#include "arbor/tree/classification.h"
#include "arbor/tree/folds.h"
#include "arbor/tree/random_order.h"
#include "arbor/tree/thread_pool.h"

namespace arbor::tree {

namespace {

// Adds up the progress of trees that grow side by side.
class joint_progress {
 public:
  joint_progress(const std::function<void(double)>& of_all, std::size_t trees)
      : report(of_all), shares(trees, 0.0) {}

  // The progress of one tree, in the form that grow_options takes.
  std::function<void(double)> of_tree(std::size_t number) {
    if (!report) return {};
    return [this, number](double settled) { set(number, settled); };
  }

 private:
  void set(std::size_t number, double settled) {
    const std::lock_guard<std::mutex> lock(mutex);
    sum += settled - shares[number];
    shares[number] = settled;
    report(sum / static_cast<double>(shares.size()));
  }

  const std::function<void(double)>& report;
  std::mutex mutex;
  std::vector<double> shares;  // by tree
  double sum = 0;
};

// Every fold deals all folds of its repeat again: that is cheap, and no repeat waits for another.
divided_cases cases_of(const table& rows, const validation_options& options,
                       const fold_result& part) {
  std::mt19937_64 random = generator_of({options.seed, part.repeat});
  return hold_out_fold(rows.cases,
                       deal_folds(rows.class_column(), rows.cases, options.folds, random),
                       part.fold - 1);
}

void validate_fold(const table& rows, const validation_options& options, const grow_options& grow,
                   fold_result& part) {
  const divided_cases cases = cases_of(rows, options, part);
  const decision_tree tree = grow_tree(rows, cases.training, grow);
  part.size = size_of(tree);
  part.quality = classify_cases(tree, rows, cases.held_back);
}

// A domain puts itself in order when it is first asked a question, which several threads could not
// do at once.
void put_domains_in_order(const table& rows) {
  for (const auto& column : rows.columns) column->get_range();
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
      result.folds.push_back({repeat, fold, {}, {}});
  }
  put_domains_in_order(rows);
  joint_progress progress(options.grow.progress, result.folds.size());
  thread_pool pool(options.grow.threads == 0 ? machine_threads() : options.grow.threads);
  pool.for_each(result.folds.size(), [&](std::size_t i) {
    grow_options grow = options.grow;
    grow.threads = 1;
    grow.progress = progress.of_tree(i);
    validate_fold(rows, options, grow, result.folds[i]);
  });
  for (const fold_result& part : result.folds) result.quality.add(part.quality);
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
