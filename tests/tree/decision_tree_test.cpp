// Trees: grown, pruned, and classified with.

#include "arbor/tree/decision_tree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <iterator>
#include <map>
#include <sstream>
#include <tuple>
#include <utility>

#include "arbor/report/tree_json.h"
#include "arbor/report/tree_report.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/holdout.h"
#include "arbor/tree/node_cases.h"
#include "arbor/tree/pruning.h"
#include "arbor/tree/table_classification.h"
#include "arbor/tree/text_classifier.h"
#include "arbor/tree/thread_pool.h"
#include "tests/support/columns.h"
#include "tests/support/oracle.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using tree::decision_tree;
using tree::table;

table loaded(const std::string& csv, const tree::load_options& options = {}) {
  return tree::load_table(temporary_file(csv).path(), options);
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

TEST(Grower, GrowsTreesOfKnownSizesOnRealTables) {
  for (const auto& [name, weight, unpruned, pruned] :
       {std::array{"pima2", "2", "69 nodes, 35 leaves, depth 9", "43 nodes, 22 leaves, depth 8"},
        {"housevotes84", "1", "279 nodes, 140 leaves, depth 15", "11 nodes, 6 leaves, depth 5"},
        {"soybean", "1", "217 nodes, 109 leaves, depth 21", "127 nodes, 64 leaves, depth 18"},
        {"birdstrikes", "20", "1641 nodes, 1567 leaves, depth 7",
         "424 nodes, 405 leaves, depth 5"}}) {
    const table rows = tree::load_table(std::string(ARBOR_DATA "/") + name + ".csv", {});
    EXPECT_EQ(tree::size_line(grown(rows, false, std::stof(weight))), unpruned);
    EXPECT_EQ(tree::size_line(grown(rows, true, std::stof(weight))), pruned);
  }
}

// So many rows that scattered cases are copied and that threads share the work.
std::string large_table() {
  dice roll{7};
  std::string csv = "wide,gaps,text,narrow,few,class\n";
  for (int row = 0; row < 40000; ++row) {
    const unsigned int wide = roll(100000), narrow = roll(50), text = roll(12);
    const bool noise = roll(10) == 0, first = (wide > 30000 + narrow * 500) == (text < 8);
    csv +=
        std::to_string(wide) + "," + (roll(30) == 0 ? "?" : std::to_string(roll(3000) + wide / 50));
    csv += ",t" + std::to_string(text) + "," + std::to_string(narrow) + ",";
    csv += (roll(40) == 0   ? "?"
            : wide % 3 == 0 ? "y"
                            : "n") +
           std::string(first != noise ? ",a\n" : ",b\n");
  }
  return csv;
}

// A column class that the library does not know: what it stores is not what it tells.
struct users_column : column_typed<unsigned char> {
  users_column(const column& source, column::_type kind)
      : column_typed(source.get_o_set()->clone(), source.get_name(), kind), told(source) {
    const std::vector<unsigned int> ones(source.size(), 1);
    append_codes(ones.data(), source.size());
  }
  unsigned int get_row_index(unsigned int row) const override { return told.get_row_index(row); }
  bool less_than(unsigned int a, unsigned int b) const override { return told.less_than(a, b); }

  const column& told;
};

TEST(Grower, GrowsTheSameLargeTreeOnAnyThreadsAndAnyClassOfColumn) {
  table large = loaded(large_table());
  tree::grow_options options;
  options.prune = false;
  std::vector<std::string> texts;
  const auto grow_again = [&] {
    const decision_tree t = tree::grow_tree(large, large.cases, options);
    EXPECT_EQ(tree::size_line(t), "907 nodes, 464 leaves, depth 12");
    texts.push_back(tree::tree_as_json(t));
    EXPECT_TRUE(texts.front() == texts.back());
  };
  for (unsigned int threads : {1U, 2U, 5U}) {
    options.threads = threads;
    double settled = 0;
    options.progress = [&](double share) { EXPECT_GE(share, std::exchange(settled, share)); };
    grow_again();
    EXPECT_NEAR(settled, 1, 1e-3);
  }
  options.progress = nullptr;
  for (const auto& [i, kind] :
       {std::pair{5, column::CLASS}, {3, column::CONTINUOUS}, {2, column::DISCRETE}}) {
    auto& replaced = large.columns[static_cast<std::size_t>(i)];
    auto before = std::exchange(replaced, std::make_unique<users_column>(*replaced, kind));
    grow_again();
    replaced = std::move(before);
  }
  options.progress = [](double /*share*/) { throw std::runtime_error("enough"); };
  EXPECT_THROW(tree::grow_tree(large, large.cases, options), std::runtime_error);
}

TEST(NodeCases, CopiesRowsOfACopyWithTheirValuesAndWeights) {
  tree::load_options options;
  options.weights_name = "w";
  const table whole = loaded("text,w,c\na,1,x\nb,2,y\n?,3,x\nd,4,y\n", options);
  auto rows = std::make_shared<const tree::case_rows>(whole);
  for (const w_sequence& cases : {w_sequence{{3, 1}, {2, 1}, {1, 1}}, {{2, 1}, {0, 1}}})
    rows = std::make_shared<const tree::case_rows>(*rows, cases);
  EXPECT_EQ(rows->size(), 2U);
  for (const auto& [row, text, weight] : {std::tuple{0U, "b", 2.0F}, {1U, "d", 4.0F}}) {
    EXPECT_EQ(rows->columns()[0]->get_row_value(row), text);
    EXPECT_EQ(rows->class_column().get_row_value(row), "y");
    EXPECT_EQ(rows->weight(row), weight);
  }
}

TEST(ThreadPool, DoesEachPieceOnceAndRethrowsWhatOneThrows) {
  for (unsigned int threads : {1U, 4U}) {
    tree::thread_pool pool(threads);
    for (std::size_t count : {0U, 1U, 1000U}) {
      std::vector<std::atomic<int>> done(count);
      pool.for_each(count, [&](std::size_t i) { ++done[i]; });
      EXPECT_TRUE(
          std::all_of(done.begin(), done.end(), [](const auto& times) { return times == 1; }));
    }
    std::atomic<int> begun = 0;
    const auto fail = [&](std::size_t i) {
      ++begun;
      if (i == 3) throw std::runtime_error("piece 3");
    };
    EXPECT_EQ(message_of([&] { pool.for_each(100000, fail); }), "piece 3");
    EXPECT_LT(begun, 100000);
  }
}

// The first two rows are not among the cases; their value may be a threshold all the same.
TEST(Grower, SeparatesNumbersWhoseMiddleOrTextWouldNot) {
  for (const auto& [other, low, high, threshold] :
       {std::array<std::string, 4>{"1", "1", "inf", "1"},
        {"1e-33", "1e-33", "2e-33", "1e-33"},
        {"1.2e-33", "1e-33", "2e-33", "1e-33"},
        {"1.0000001", "1.0000001", "1.0000002", "1.0000001"},
        {"3", "1", "5", "3"},
        {"4", "1", "5", "1"},
        {"2", "-3", "7", "2"}}) {
    std::string csv = "a,c\n";
    for (const std::string& row : {other + ",x\n", low + ",x\n", high + ",y\n"}) csv += row + row;
    const table rows = loaded(csv);
    const decision_tree t = tree::grow_tree(rows, {rows.cases.begin() + 2, rows.cases.end()}, {});
    EXPECT_EQ(text_of(t), "a <= " + threshold + ": x (2)\na > " + threshold + ": y (2)\n");
  }
}

TEST(Pruning, UsesTheExactLimitOfTheBinomialDistribution) {
  for (const auto& [errors, cases] : {std::pair{0, 1}, {0, 6}, {1, 2}, {1, 16}, {3, 7}, {20, 60}}) {
    const double p = tree::binomial_upper_limit(errors, cases, 0.25);
    double up_to = 0, choose = 1;
    for (int k = 0; k <= errors; choose = choose * (cases - k) / (k + 1), ++k)
      up_to += choose * std::pow(p, k) * std::pow(1 - p, cases - k);
    EXPECT_NEAR(up_to, 0.25, 1e-9) << errors << " of " << cases;
  }
  EXPECT_EQ(tree::binomial_upper_limit(5, 5, 0.25), 1);
}

// Of tables with unknown values, many values and noise: rows, their texts and the training cases
// take the same ways.
TEST(Classification, GivesTheSameForRowsAndForTheirTexts) {
  for (const char* name : {"housevotes84", "pima2", "soybean", "birdstrikes"}) {
    const std::string path = std::string(ARBOR_DATA "/") + name + ".csv";
    const table rows = tree::load_table(path, {});
    const decision_tree t = grown(rows, false, 5);
    std::ostringstream out;
    const auto by_text = tree::classify_table(path, t, {}, out);
    EXPECT_EQ(by_text.matrix->pairs(), tree::classify_cases(t, rows, rows.cases).pairs()) << name;
    for (std::size_t i = 0; i < t.nodes.size(); i += t.nodes.size() / 20 + 1) {
      const w_sequence here = tree::cases_at_node(t, rows, i);
      EXPECT_NEAR(tree::total_weight(here) / tree::weigh(t.nodes[i]).cases, 1, 0.02) << name << i;
      for (const auto& weighted : here) EXPECT_GT(weighted.second, 0);
    }
  }
}

TEST(Classification, SendsUnknownAndUnseenValuesDownEveryBranchByItsShare) {
  const decision_tree t = grown(loaded("a,c\np,x\np,x\np,x\np,y\nq,y\nq,y\nq,y\nq,y\n"), false);
  tree::text_classifier classify(t);
  EXPECT_EQ(classify({"p"})[0], 0.75);
  for (const char* text : {static_cast<const char*>(nullptr), "never seen", "?"})
    EXPECT_THAT(classify({text}), testing::ElementsAre(0.375, 0.625));
}

TEST(Classification, ReadsNumbersAsTheDomainOfTheAttributeDoes) {
  for (const auto& [type, low, high, unfit] :
       {std::array<std::string, 4>  //
        {"integer", "-7,-, 1,+1,01", "2,5", ",2.5,1e0,9999999999"},
        {"uinteger", "0,1,+1", "2,4294967295", "-1,4294967296,inf"},
        {"float", "1,1.00000001,-inf,0x1", "1.5,1e99, inf", ",nan,1 "}}) {
    tree::load_options options;
    options.types["a"] = type;
    const decision_tree t = grown(loaded("a,c\n1,x\n1,x\n5,y\n5,y\n", options), false);
    tree::text_classifier classify(t);
    for (const std::string& text : listed(low)) EXPECT_EQ(classify({text.c_str()})[0], 1) << text;
    for (const std::string& text : listed(high)) EXPECT_EQ(classify({text.c_str()})[1], 1) << text;
    for (const std::string& text : listed(unfit))
      EXPECT_THROW(classify({text.c_str()}), tree::unfit_text) << text;
    EXPECT_EQ(classify({"?"})[0], 0.5);
  }
}

TEST(Classification, FindsTheWayOfRowsThatAnotherTableCodesOtherwise) {
  const decision_tree t =
      grown(loaded("d,n,c\np,1,x\np,1,x\np,5,y\np,5,y\nq,1,z\nq,5,z\nr,2,w\nr,2,w\n"), false, 1);
  const table other = loaded("d,n,c\nq,3,z\nr,3,w\nnew,3,w\np,0,x\np,3,y\np,1,x\n?,0,z\n");
  const tree::row_classifier classify(t, other);
  tree::text_classifier by_text(t);
  for (unsigned int row = 0; row < other.cases.size(); ++row) {
    const std::string d = other.columns[0]->get_row_value(row);
    const std::string n = other.columns[1]->get_row_value(row);
    EXPECT_EQ(classify(row), by_text({d.c_str(), n.c_str()})) << row;
  }
  EXPECT_EQ(message_of([&] { tree::row_classifier(t, loaded("d,m,c\np,1,x\n")); }),
            "the table has no column of the name n");
}

TEST(TableClassification, WritesEveryRowAndCountsThoseOfKnownClassAndWeight) {
  const decision_tree t = grown(loaded("a,c\n1,x\n1,x\n5,y\n5,y\n"), false);
  tree::classification_options options;
  options.weights_name = "w";
  std::ostringstream out;
  const auto run = [&](const std::string& csv) {
    out.str("");
    return tree::classify_table(temporary_file(csv).path(), t, options, out);
  };
  const auto result =
      run("predicted,a,w,c\n\"\",1,2,x\n\"p,q\",7,1,x\n,2,0,y\n,bad,0,x\n,?,1,z\n,0,1,?\n");
  EXPECT_EQ(out.str(),
            "predicted,a,w,c,predicted_2,probability\n\"\",1,2,x,x,1\n\"p,q\",7,1,x,y,1\n"
            ",2,0,y,y,1\n,bad,0,x,x,0.5\n,?,1,z,x,0.5\n,0,1,?,x,1\n");
  EXPECT_EQ(result.rows, 6U);
  const std::map<std::pair<std::size_t, std::size_t>, double> pairs{
      {{0, 0}, 2}, {{0, 1}, 1}, {{2, 0}, 1}};
  EXPECT_EQ(result.matrix->pairs(), pairs);
  EXPECT_EQ(result.matrix->total(), 4);
  EXPECT_EQ(result.matrix->errors(), 2);
  options.all_probabilities = true;
  EXPECT_FALSE(run("a,w,P(y)\n0,1,z\n").matrix);
  EXPECT_EQ(out.str(), "a,w,P(y),predicted,P(x),P(y)_2\n0,1,z,x,1,0\n");
  for (const auto& [csv, message] :
       {std::pair{"b,w\n1,1\n", "an attribute of the model"},
        {"a,v\n1,1\n", "the weights"},
        {"a,w\n1,1\nbad,1\n", ":3: column \"a\": \"bad\" is not of the type integer"}})
    EXPECT_THAT(message_of([&] { run(csv); }), testing::HasSubstr(message));
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
  std::vector<std::vector<bool>> held(3, std::vector<bool>(cases.size()));
  for (std::size_t i = 0; i < 3; ++i) {
    tree::divided_cases parts = tree::hold_out(cases, 0.3, i / 2);  // the seeds 0, 0 and 1
    EXPECT_EQ(parts.held_back.size(), 300U);
    for (const auto& held_back : parts.held_back) held[i][held_back.first] = true;
    for (const auto& weighted : parts.training) EXPECT_FALSE(held[i][weighted.first]);
    EXPECT_EQ(parts.training.size(), 700U);
  }
  EXPECT_EQ(held[0], held[1]);
  EXPECT_NE(held[0], held[2]);
}

}  // namespace
}  // namespace arbor::tests
