// How well trees predict: evaluations and cross-validations.

#include "arbor/tree/evaluation.h"

#include <gmock/gmock.h>
#include <malloc.h>

#include <map>
#include <tuple>
#include <utility>

#include "arbor/tree/classification.h"
#include "arbor/tree/validation/cross_validation.h"
#include "arbor/tree/validation/folds.h"
#include "arbor/tree/validation/tuning.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using tree::evaluation;
using tree::table;

// The third case is of a class that the tree does not have, and no case is of the second.
TEST(Evaluation, CountsWeightsAndStaysFinite) {
  evaluation sums, part;
  EXPECT_EQ(sums.accuracy() + sums.accuracy_error() + sums.log_loss() + sums.brier_score(), 0);
  sums.add(tree::scored(0, {0.5, 0.25, 0.25}, 2));
  part.add(tree::scored(2, {0.5, 0.5, 0}, 1));
  part.add(tree::scored(3, {0, 0.5, 0.5}, 1));
  sums.add(part);
  EXPECT_EQ(sums.accuracy(), 0.5);
  EXPECT_EQ(sums.accuracy_error(), std::sqrt(0.25 * 6 / 16));
  EXPECT_EQ(sums.commonest_class_error(), 0.5);
  EXPECT_NEAR(sums.log_loss(), (2 * 1 + 2 * std::log2(1000)) / 4, 1e-12);
  EXPECT_EQ(sums.brier_score(), (2 * (0.25 + 0.0625 + 0.0625) + 1.5 + 1.5) / 4);
  std::map<std::size_t, std::vector<double>> classes;
  for (const tree::class_quality& c : tree::quality_by_class(sums.matrix()))
    classes[c.entry] = {c.actual, c.predicted, c.precision(), c.recall(), c.f1()};
  EXPECT_EQ(classes, (decltype(classes){{0, {2, 3, 2. / 3, 1, 0.8}},
                                        {1, {0, 1, 0, 0, 0}},
                                        {2, {1, 0, 0, 0, 0}},
                                        {3, {1, 0, 0, 0, 0}}}));
  const double error = sums.accuracy_error(), loss = sums.log_loss();
  evaluation twice = sums;
  twice.add(sums);
  EXPECT_EQ(twice.mean_of(2).accuracy_error(), error);
  EXPECT_EQ(twice.mean_of(2).log_loss(), loss);
  EXPECT_EQ(twice.mean_of(2).matrix().pairs(), sums.matrix().pairs());
}

TEST(Evaluation, GoesOnFromTheSumsOfTheCasesBefore) {
  std::mt19937 random(1);
  const auto share = [&] { return static_cast<double>(random() % 10) / 9; };
  evaluation whole, in_turn = evaluation::with_sums({});
  for (int i = 0; i < 300; ++i) {
    const auto added = tree::scored(random() % 5, {share(), share(), share()}, share() + 0.1);
    whole.add(added);
    in_turn = evaluation::with_sums(in_turn.sums());
    in_turn.add(added);
  }
  for (const auto figure : {&evaluation::accuracy, &evaluation::accuracy_error,
                            &evaluation::log_loss, &evaluation::brier_score})
    EXPECT_EQ((in_turn.*figure)(), (whole.*figure)());
  EXPECT_EQ(in_turn.matrix().pairs(), whole.matrix().pairs());
}

TEST(HoldOut, OfPartsIsThatOfTheWhole) {
  impls::w_sequence cases(100);
  for (unsigned int row = 0; row < 100; ++row) cases[row] = {row, 1};
  for (std::size_t seed = 0; seed <= 100; ++seed) {
    const std::size_t bounds[] = {0, seed / 3, seed, 100};
    std::vector<unsigned int> whole, in_turn;
    const auto add = [](std::vector<unsigned int>& rows, const tree::divided_cases& divided) {
      for (const auto& weighted : divided.held_back) rows.push_back(weighted.first);
    };
    add(whole, tree::hold_out(cases, static_cast<double>(seed) / 100, seed));
    for (const int i : {0, 1, 2}) {
      const impls::w_sequence part(cases.data() + bounds[i], cases.data() + bounds[i + 1]);
      add(in_turn, tree::hold_out(part, static_cast<double>(seed) / 100, seed, bounds[i],
                                  100 - bounds[i + 1]));
    }
    EXPECT_EQ(in_turn, whole);
  }
}

// Classes of 11, 5 and 1 cases in 4 folds.
TEST(Folds, HaveEachClassAsEvenlyAsPossible) {
  const table rows = load_csv(
      "a,c\n1,x\n1,x\n1,x\n1,x\n1,x\n1,x\n1,x\n1,x\n1,x\n1,x\n1,x\n"
      "1,y\n1,y\n1,y\n1,y\n1,y\n1,z\n");
  std::mt19937_64 random(1);
  const auto folds = tree::deal_folds(rows.class_column(), rows.cases, 4, random);
  std::map<char, std::multiset<std::size_t>> sizes;
  for (unsigned int fold = 0; fold < 4; ++fold) {
    std::map<char, std::size_t> count;
    const tree::divided_cases cases = tree::hold_out_fold(rows.cases, folds, fold);
    EXPECT_EQ(cases.held_back.size() + cases.training.size(), rows.cases.size());
    for (const auto& weighted : cases.held_back)
      ++count[rows.class_column().get_row_value(weighted.first)[0]];
    sizes['+'].insert(cases.held_back.size());
    for (const char c : {'x', 'y', 'z'}) sizes[c].insert(count[c]);
  }
  EXPECT_EQ(
      sizes,
      (decltype(sizes){
          {'+', {4, 4, 4, 5}}, {'x', {2, 3, 3, 3}}, {'y', {1, 1, 1, 2}}, {'z', {0, 0, 0, 1}}}));
  EXPECT_NE(folds, tree::deal_folds(rows.class_column(), rows.cases, 4, random));
}

// The plain way: each pair of options grows and prunes trees of its own.
TEST(Tuning, ChoosesTheLeastErrorsAndTheSmallestTreesOnAnyThreads) {
  for (const char* name : {"iris", "golf", "pima2"}) {
    const table rows = tree::load_table(std::string(ARBOR_DATA "/") + name + ".csv", {});
    std::mt19937_64 random(3), same(3);
    const auto folds = tree::deal_folds(rows.class_column(), rows.cases, 10, random);
    std::tuple<double, std::size_t, float, float> best{9, 0, 0, 0};
    tree::grow_options options;
    for (const float weight : tree::tuned_min_weights) {
      for (const float confidence : tree::tuned_confidences) {
        evaluation sum;
        std::size_t leaves = 0;
        for (unsigned int fold = 0; fold < 10; ++fold) {
          const auto cases = tree::hold_out_fold(rows.cases, folds, fold);
          options.min_weight = weight;
          options.confidence = confidence;
          const tree::decision_tree t = tree::grow_tree(rows, cases.training, options);
          sum.add(tree::classify_cases(t, rows, cases.held_back));
          leaves += tree::size_of(t).leaves;
        }
        best = std::min(best, {1 - sum.accuracy() + sum.brier_score(), leaves, weight, confidence});
      }
    }
    double done = 0;
    options.threads = 3;
    options.progress = [&](double share) { EXPECT_GE(share, std::exchange(done, share)); };
    const tree::grow_options tuned = tree::tuned_options(rows, rows.cases, options, same);
    EXPECT_NEAR(done, 1, 1e-3);
    EXPECT_EQ(tuned.min_weight, std::get<2>(best)) << name;
    EXPECT_EQ(tuned.confidence, std::get<3>(best)) << name;
  }
}

// The hundreds of trees would keep several MB. A sanitizer's malloc is its own, of which mallinfo2
// knows nothing.
TEST(Validation, KeepsNoMemory) {
  const table rows = tree::load_table(ARBOR_DATA "/pima2.csv", {});
  tree::validation_options options;
  options.folds = 2;
  options.tune = true;
  const std::size_t before = mallinfo2().uordblks;
  tree::cross_validate(rows, options);
  EXPECT_LT(mallinfo2().uordblks, before + 500000);
}

}  // namespace
}  // namespace arbor::tests
