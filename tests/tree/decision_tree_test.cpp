// Trees: grown, pruned, classified with, saved and reloaded.

#include "arbor/tree/decision_tree.h"

#include <gmock/gmock.h>

#include <atomic>
#include <cmath>
#include <fstream>
#include <iterator>
#include <utility>

#include "arbor/report/tree_report.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/binomial_limit.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/crew.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/holdout.h"
#include "arbor/tree/pruning.h"
#include "tests/support/columns.h"
#include "tests/support/oracle.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using tree::decision_tree;
using tree::table;

table loaded(const std::string& csv) {
  const temporary_file file(csv);
  return tree::load_table(file.path(), {});
}

decision_tree grown(const table& rows, bool prune, float min_weight = 2) {
  tree::grow_options options;
  options.min_weight = min_weight;
  options.prune = prune;
  return tree::grow_tree(rows, rows.cases, options);
}

std::string text_of(const decision_tree& t) {
  return tree::tree_as_text(t, tree::whole_depth);
}

TEST(Grower, ChoosesByGainRatioAmongTheGainsAboveAverageAndStopsAtPureNodes) {
  const table golf = tree::load_table(ARBOR_DATA "/golf.csv", {});
  const decision_tree t = grown(golf, true);
  EXPECT_EQ(text_of(t),
            "outlook = overcast: yes (4)\n"
            "outlook = rainy [2]\n"
            "|   windy = no: yes (3)\n"
            "|   windy = yes: no (2)\n"
            "outlook = sunny [3]\n"
            "|   humidity <= 75: yes (2)\n"
            "|   humidity > 75: no (3)\n");
  EXPECT_EQ(tree::size_line(t), "8 nodes, 5 leaves, depth 2");
  EXPECT_EQ(tree::tree_as_text(t, 1),
            "outlook = overcast: yes (4)\noutlook = rainy: ... 2 leaves below [2]\n"
            "outlook = sunny: ... 2 leaves below [3]\n");
  tree::grow_options options;
  options.max_depth = 0;
  EXPECT_EQ(text_of(tree::grow_tree(golf, golf.cases, options)), "yes (14/5)\n");
}

// Rows enough that small nodes are brought together, that threads share the work, and that sorts go
// by long digits.
std::string large_table() {
  dice roll{7};
  std::string csv = "wide,gaps,text,narrow,few,class\n";
  for (int row = 0; row < 40000; ++row) {
    const unsigned int wide = roll(100000), narrow = roll(50), text = roll(12);
    const bool noise = roll(10) == 0, first = (wide > 30000 + narrow * 500) == (text < 8);
    csv += std::to_string(wide) + "," +
           (roll(30) == 0 ? "?" : std::to_string(roll(3000) + wide / 50)) + ",t" +
           std::to_string(text) + "," + std::to_string(narrow) + "," +
           (roll(40) == 0   ? "?"
            : wide % 3 == 0 ? "y"
                            : "n") +
           (first != noise ? ",a\n" : ",b\n");
  }
  return csv;
}

TEST(Grower, GrowsTheSameLargeTreeOnAnyNumberOfThreads) {
  const table large = loaded(large_table());
  tree::grow_options options;
  options.prune = false;
  std::vector<std::string> texts;
  for (unsigned int threads : {1U, 2U, 5U}) {
    options.threads = threads;
    double settled = 0;
    options.progress = [&](double share) { EXPECT_GE(share, std::exchange(settled, share)); };
    const decision_tree t = tree::grow_tree(large, large.cases, options);
    EXPECT_EQ(tree::size_line(t), "907 nodes, 464 leaves, depth 11");
    texts.push_back(text_of(t));
    EXPECT_EQ(texts.front(), texts.back());
  }
  options.progress = [](double /*share*/) { throw std::runtime_error("enough"); };
  EXPECT_THROW(tree::grow_tree(large, large.cases, options), std::runtime_error);
}

TEST(Crew, DoesEachPieceOnceAndThrowsOnWhatOneThrows) {
  for (unsigned int threads : {1U, 4U}) {
    tree::crew workers(threads);
    for (std::size_t count : {0U, 1U, 1000U}) {
      std::vector<std::atomic<int>> done(count);
      workers.each(count, [&](std::size_t i) { ++done[i]; });
      EXPECT_TRUE(
          std::all_of(done.begin(), done.end(), [](const auto& times) { return times == 1; }));
    }
    std::atomic<int> begun = 0;
    const auto fail = [&](std::size_t i) {
      ++begun;
      if (i == 3) throw std::runtime_error("piece 3");
    };
    EXPECT_EQ(message_of([&] { workers.each(100000, fail); }), "piece 3");
    EXPECT_LT(begun, 100000);
  }
}

TEST(Grower, SeparatesNumbersWhoseMiddleOrTextWouldNot) {
  EXPECT_EQ(text_of(grown(loaded("a,c\n1,x\n1,x\ninf,y\ninf,y\n"), false)),
            "a <= 1: x (2)\na > 1: y (2)\n");
  EXPECT_EQ(text_of(grown(loaded("a,c\n1e-33,x\n1e-33,x\n2e-33,y\n2e-33,y\n"), false)),
            "a <= 1e-33: x (2)\na > 1e-33: y (2)\n");
  EXPECT_EQ(
      text_of(grown(loaded("a,c\n1.0000001,x\n1.0000001,x\n1.0000002,y\n1.0000002,y\n"), false)),
      "a <= 1.0000001: x (2)\na > 1.0000001: y (2)\n");
}

TEST(Pruning, UsesTheExactLimitOfTheBinomialDistribution) {
  for (const auto& [errors, cases] : {std::pair{0, 1}, {0, 6}, {1, 2}, {1, 16}, {3, 7}, {20, 60}}) {
    const double p = tree::binomial_upper_limit(errors, cases, 0.25);
    double up_to = 0;
    double choose = 1;
    for (int k = 0; k <= errors; choose = choose * (cases - k) / (k + 1), ++k) {
      up_to += choose * std::pow(p, k) * std::pow(1 - p, cases - k);
    }
    EXPECT_NEAR(up_to, 0.25, 1e-9) << errors << " of " << cases;
  }
  EXPECT_EQ(tree::binomial_upper_limit(5, 5, 0.25), 1);
}

TEST(Pruning, CutsWhatTellsNothingAndKeepsWhatDoes) {
  std::string csv = "noise,signal,c\n";
  dice roll{7};
  for (unsigned int i = 0; i < 200; ++i) {
    const bool x = roll(2) == 0;
    csv += "v" + std::to_string(roll(8)) + (x ? ",1," : ",2,") +
           (x != (roll(10) == 0) ? "x\n" : "y\n");
  }
  const table rows = loaded(csv);
  EXPECT_GT(tree::measure(grown(rows, false)).leaves, 4U);
  EXPECT_EQ(tree::measure(grown(rows, true)).leaves, 2U);
}

TEST(Grower, PassesOverAGoodRatioOfASmallGain) {
  std::string csv = "rare,common,c\n";
  for (int i = 0; i < 40; ++i) {
    const bool x =
        i < 20 ? i % 10 < 8 : i % 10 < 2;  // in each quarter of the rows eight of ten are alike
    csv += (i < 2 ? "p," : "q,") + std::string(1, static_cast<char>('a' + i / 10)) +
           (x ? ",x\n" : ",y\n");
  }
  EXPECT_THAT(text_of(grown(loaded(csv), false)), testing::StartsWith("common = a"));
}

TEST(Pruning, CountsTheErrorsOfSharedCasesOnce) {
  // Ten unknown cases of weight 1 went down both branches, which without them would be the better
  // ones.
  std::vector<tree::tree_node> nodes(3);
  nodes[0].class_weights = {12, 8};
  nodes[0].attribute = 0;
  nodes[0].first_child = 1;
  nodes[0].child_count = 2;
  nodes[1].class_weights = {14, 3};
  nodes[2].class_weights = {5, 8};
  tree::prune(nodes, 0.25F);
  EXPECT_FALSE(nodes[0].is_leaf());
}

// A table with unknown values, many values and noise, and the texts of its attributes.
std::string random_csv(dice& roll, std::vector<texts>& rows) {
  std::string csv = "n,f,d,c\n";
  for (unsigned int i = 0; i < 120; ++i) {
    const unsigned int n = roll(40);
    texts row{roll(6) == 0 ? "?" : std::to_string(n),
              roll(5) == 0 ? "?" : std::to_string(roll(30)) + ".25",
              roll(7) == 0 ? "?" : "v" + std::to_string(roll(9))};
    csv += row[0] + "," + row[1] + "," + row[2] +
           (roll(4) == 0 ? ",z\n"
            : n < 20     ? ",x\n"
                         : ",y\n");
    rows.push_back(std::move(row));
  }
  return csv;
}

// The texts of such a row as a tree's attributes have them.
std::vector<const char*> cells_of(const decision_tree& t, const texts& row) {
  std::vector<const char*> cells;
  for (const auto& attribute : t.attributes) {
    const std::string& cell = row[std::string("nfd").find(attribute->get_name())];
    cells.push_back(cell == "?" ? nullptr : cell.c_str());
  }
  return cells;
}

TEST(Classification, SaysTheSameOfRowsAndOfTheirTexts) {
  dice roll{8};
  for (int round = 0; round < 20; ++round) {
    std::vector<texts> written;
    const table rows = loaded(random_csv(roll, written));
    const decision_tree t = grown(rows, round % 2 == 0, 1);
    const tree::row_classifier by_row(t, rows);
    tree::text_classifier by_text(t);
    for (unsigned int row = 0; row < rows.cases.size(); ++row) {
      EXPECT_EQ(by_row(row), by_text(cells_of(t, written[row])));
      double at_leaves = 0;
      for (std::size_t i = 0; i < t.nodes.size(); ++i)
        at_leaves += t.nodes[i].is_leaf() ? by_row.weight_at(row, i) : 0;
      EXPECT_GT(at_leaves, 0);
    }
  }
}

TEST(Classification, SendsUnknownAndUnseenValuesDownEveryBranchByItsShare) {
  const decision_tree t = grown(loaded("a,c\np,x\np,x\np,x\np,y\nq,y\nq,y\nq,y\nq,y\n"), false);
  tree::text_classifier say(t);
  EXPECT_THAT(say({"p"}), testing::ElementsAre(0.75, 0.25));
  EXPECT_THAT(say({nullptr}), testing::ElementsAre(0.375, 0.625));
  EXPECT_THAT(say({"never seen"}), testing::ElementsAre(0.375, 0.625));
  const decision_tree cut = grown(loaded("a,c\n1,x\n1,x\n5,y\n5,y\n"), false);
  tree::text_classifier compare(cut);
  EXPECT_THAT(compare({"-7"}), testing::ElementsAre(1, 0));
  EXPECT_THAT(compare({"2"}), testing::ElementsAre(0, 1));
  EXPECT_THROW(compare({"2.5"}), tree::unfit_text);
}

TEST(Classification, FindsTheWayOfRowsThatAnotherTableCodesOtherwise) {
  const decision_tree t =
      grown(loaded("d,n,c\np,1,x\np,1,x\np,5,y\np,5,y\nq,1,z\nq,5,z\nr,2,w\nr,2,w\n"), false, 1);
  const table other = loaded("d,n,c\nq,3,z\nr,3,w\nnew,3,w\nq,7,z\np,0,x\np,3,y\n");
  const tree::row_classifier say(t, other);
  tree::text_classifier by_text(t);
  const std::vector<std::vector<const char*>> rows{{"q", "3"}, {"r", "3"}, {"new", "3"},
                                                   {"q", "7"}, {"p", "0"}, {"p", "3"}};
  for (unsigned int row = 0; row < rows.size(); ++row)
    EXPECT_EQ(say(row), by_text(rows[row])) << row;
}

TEST(Grower, LeavesOutWhatBecomesOfACaseInTooManyBranches) {
  std::string csv = "a,b,c\n";
  for (int i = 0; i < 3000; ++i)
    csv += "v" + std::to_string(i % 1500) + ",1," + (i % 2 == 0 ? "x\n" : "y\n");
  for (int i = 0; i < 3000; ++i) csv += "?,2,z\n";
  const decision_tree t = grown(loaded(csv), false, 1);
  for (const tree::tree_node& node : t.nodes) EXPECT_GT(tree::weigh(node).cases, 0);
  EXPECT_LT(t.nodes.size(), 3100U);
}

TEST(Holdout, KeepsBackTheSameRowsForTheSameSeed) {
  w_sequence cases;
  for (unsigned int row = 0; row < 1000; ++row) cases.push_back({row, 1});
  const auto rows_of = [](const w_sequence& s) {
    std::vector<unsigned int> rows;
    for (const auto& c : s) rows.push_back(c.first);
    return rows;
  };
  const tree::divided_cases parts = tree::hold_out(cases, 0.3, 5);
  EXPECT_EQ(parts.held_back.size(), 300U);
  EXPECT_EQ(parts.training.size(), 700U);
  EXPECT_EQ(rows_of(parts.held_back), rows_of(tree::hold_out(cases, 0.3, 5).held_back));
  EXPECT_NE(rows_of(parts.held_back), rows_of(tree::hold_out(cases, 0.3, 6).held_back));
  EXPECT_EQ(
      tree::hold_out(cases, 0, 5).training.size() + tree::hold_out(cases, 1, 5).held_back.size(),
      2000U);
}

}  // namespace
}  // namespace arbor::tests
