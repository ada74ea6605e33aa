// Trees: grown, pruned, and classified with.

#include "arbor/tree/decision_tree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <map>
#include <set>
#include <sstream>
#include <tuple>
#include <utility>

#include "arbor/table/thread_pool.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/growing/gain_by_chance.h"
#include "arbor/tree/growing/node_cases.h"
#include "arbor/tree/growing/two_sides.h"
#include "arbor/tree/growing/value_groups.h"
#include "arbor/tree/pruning.h"
#include "arbor/tree/rating.h"
#include "arbor/tree/table_classification.h"
#include "arbor/tree/task_stack.h"
#include "arbor/tree/text_classifier.h"
#include "tests/support/cells.h"
#include "tests/support/oracle.h"
#include "tests/support/reports.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using tree::decision_tree;
using tree::table;

// So many rows that scattered cases are copied and that threads share the work.
std::string large_table() {
  dice roll{7};
  std::string csv = "wide,gaps,text,narrow,few,class\n";
  for (int row = 0; row < 40000; ++row) {
    const unsigned int wide = roll(100000), narrow = roll(50), text = roll(12);
    const bool is_a = (roll(10) == 0) != ((wide > 30000 + narrow * 500) == (text < 8));
    const auto number = [](unsigned int value) { return std::to_string(value) + ","; };
    csv += number(wide) + (roll(30) == 0 ? "?," : number(roll(3000) + wide / 50)) + "t";
    csv += number(text) + number(narrow) + (roll(40) == 0 ? "?" : wide % 3 == 0 ? "y" : "n");
    csv += is_a ? ",a\n" : ",b\n";
  }
  return csv;
}

// A column class that the library does not know: what it stores is not what it returns.
struct users_column : column_typed<unsigned char> {
  users_column(const column& from, column::_type kind)
      : column_typed(from.get_o_set()->clone(), from.get_name(), kind), source(from) {
    append_codes(std::vector<unsigned int>(from.size(), 1).data(), from.size());
  }
  unsigned int get_row_index(unsigned int row) const override { return source.get_row_index(row); }
  bool less_than(unsigned int a, unsigned int b) const override { return source.less_than(a, b); }
  impls::w_sequence* partition(impls::w_sequence::const_iterator begin,
                               impls::w_sequence::const_iterator end, unsigned int branch,
                               float total, float& ratio,
                               strata::util::pair<unsigned int, unsigned int>& range,
                               const partition_desc& desc) const override {
    ++partitions;
    return column_typed::partition(begin, end, branch, total, ratio, range, desc);
  }

  const column& source;
  mutable std::atomic<unsigned int> partitions{0};
};

TEST(Grower, GrowsTheSameLargeTreeOnAnyThreadsAndAnyClassOfColumn) {
  table large = load_csv(large_table());
  tree::grow_options options;
  options.prune = false;
  texts trees;
  const auto grow_again = [&] {
    const decision_tree t = tree::grow_tree(large, large.cases, options);
    EXPECT_EQ(tree::size_line(t), "907 nodes, 464 leaves, depth 12");
    trees.push_back(reports_of(t));
    EXPECT_TRUE(trees.front() == trees.back());
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
       {std::pair{5U, column::CLASS}, {3U, column::CONTINUOUS}, {2U, column::DISCRETE}}) {
    auto before = std::move(large.columns[i]);
    auto users = std::make_unique<users_column>(*before, kind);
    const auto& partitions = users->partitions;
    large.columns[i] = std::move(users);
    grow_again();
    EXPECT_EQ(partitions > 0, kind != column::CLASS);
    large.columns[i] = std::move(before);
  }
  options.progress = [](double /*share*/) { throw std::runtime_error("enough"); };
  EXPECT_THROW(tree::grow_tree(large, large.cases, options), std::runtime_error);
}

// A column that rates itself as it is told to.
struct told_column : users_column {
  told_column(const column& from, float told_gain, float told_split_info)
      : users_column(from, column::DISCRETE), gain(told_gain), split_info(told_split_info) {}
  void quality_measure(column* /*classes*/, float /*weight*/, impls::w_sequence* /*cases*/,
                       strata::util::pair<unsigned int, unsigned int>& /*range*/,
                       float /*min_weight*/, impls::options* /*opts*/, splitting_desc& result,
                       bool /*copy_cases*/) const override {
    result.gain = gain;
    result.split_info = split_info;
  }

  float gain;
  float split_info;
};

TEST(Rating, IsNoSplitUnlessItsNumbersAreFinite) {
  constexpr float inf = std::numeric_limits<float>::infinity();
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  table two = load_csv("told,x,class\np,1,a\nq,1,a\nr,2,b\nr,2,b\n");
  const auto source = std::move(two.columns[0]);
  for (const auto& [gain, split_info] : {std::pair{nan, 1.0F},
                                         {inf, 1.0F},
                                         {-inf, 1.0F},
                                         {1.0F, nan},
                                         {2.0F, inf},
                                         {1.0F, 1e-45F}}) {
    two.columns[0] = std::make_unique<told_column>(*source, gain, split_info);
    const tree::table_rating ratings = tree::rate_attributes(two, two.cases, 1);
    EXPECT_EQ(ratings.attributes[0].no_split_reason, "its rating is not a finite number");
    EXPECT_TRUE(ratings.attributes[1].chosen);
    const decision_tree grown = tree::grow_tree(two, two.cases, {});
    EXPECT_EQ(grown.attributes.front()->get_name(), "x") << gain << " " << split_info;
  }
}

TEST(NodeCases, CopiesRowsOfACopyWithTheirValuesAndWeights) {
  const table whole = load_csv("text,w,c\na,1,x\nb,2,y\n?,3,x\nd,4,y\n", options_of("weights w"));
  const tree::case_rows all(whole), some(all, {{3, 1}, {2, 1}, {1, 1}});
  const tree::case_rows rows(some, {{2, 1}, {0, 1}, {1, 1}});
  std::ostringstream values;
  for (unsigned int row = 0; row < rows.size(); ++row)
    values << rows.columns()[0]->get_row_value(row) << rows.class_column().get_row_value(row)
           << rows.weight(row) << " ";
  EXPECT_EQ(values.str(), "by2 dy4 ?x3 ");
}

// Weights in thirds are rounded, those in quarters are not, and one is very light.
table random_table(dice& roll, double fraction) {
  std::string csv = "n,t,w,c\n40,rare,0.0078125,x\n";
  for (int row = 1; row < 300; ++row) {
    const unsigned int n = roll(40), t = roll(6);
    csv += (roll(9) == 0 ? "?" : std::to_string(n)) +
           (roll(9) == 0 ? ",?," : ",t" + std::to_string(t) + ",");
    csv += std::to_string((1 + roll(9)) / fraction);
    csv += (roll(4) == 0) != ((n > 12) == (t < 3)) ? ",x\n" : ",y\n";
  }
  return load_csv(csv, options_of("weights w"));
}

std::string told(const w_sequence& cases) {
  std::ostringstream text;
  for (const auto& [row, weight] : cases) text << std::hexfloat << row << "*" << weight << " ";
  return text.str();
}

auto numbers_of(const tree::side_weights& w) {
  return std::tie(w.known_cases, w.known_weight, w.exact_weight, w.unknown_cases, w.unknown_weight,
                  w.before_least_code, w.greatest_code);
}

TEST(NodeCases, AreDividedInPartsAsAllAtOnce) {
  dice roll{2};
  for (const double fraction : {3.0, 4.0}) {
    const table rows = random_table(roll, fraction);
    const tree::node_cases whole = tree::root_cases(rows, rows.cases);
    tree::node_cases before = whole, later = whole;
    const auto middle = rows.cases.begin() + 1 + roll(299);
    before.cases = std::make_shared<const w_sequence>(rows.cases.begin(), middle);
    later.cases = std::make_shared<const w_sequence>(middle, rows.cases.end());
    for (unsigned int threshold = 1; threshold < rows.columns[0]->get_distinct(); ++threshold) {
      const auto all = tree::weigh_sides(whole, 0, threshold, {});
      const auto first = tree::weigh_sides(before, 0, threshold, {});
      const auto second = tree::weigh_sides(later, 0, threshold, {});
      tree::side_weights sum = tree::weigh_sides(later, 0, threshold, first);
      EXPECT_EQ(numbers_of(sum), numbers_of(all));
      sum = first;
      sum.add(second);
      EXPECT_TRUE(fraction == 3 || numbers_of(sum) == numbers_of(all)) << threshold;
      const auto sides = [&](const tree::node_cases& node, const tree::side_weights& weights) {
        return tree::divide_at_threshold(node, 0, threshold, weights.known_cases,
                                         all.sides(threshold, rows.total_weight));
      };
      const auto expected = sides(whole, all), a = sides(before, first), b = sides(later, second);
      for (const std::size_t i : {0U, 1U})
        EXPECT_EQ(told(*a[i].cases) + told(*b[i].cases), told(*expected[i].cases));
    }
    const tree::value_groups groups(whole, 1), a(before, 1), b(later, 1);
    std::vector<float> weights(groups.values()), in_turn = weights;
    groups.add_weights(weights);
    for (const tree::value_groups* part : {&a, &b}) part->add_weights(in_turn);
    EXPECT_EQ(in_turn, weights);
    for (std::size_t value = 0; value < groups.values(); ++value) {
      EXPECT_EQ(a.counts()[value] + b.counts()[value], groups.counts()[value]);
      const float share = weights[value] / rows.total_weight;
      w_sequence expected, joined;
      groups.add_known(value, expected);
      for (const tree::value_groups* part : {&a, &b}) part->add_known(value, joined);
      groups.add_unknown(share, expected);
      for (const tree::value_groups* part : {&a, &b}) part->add_unknown(share, joined);
      EXPECT_EQ(told(joined), told(expected));
    }
  }
}

TEST(ThreadPool, DoesEachPieceOnceAndRethrowsWhatOneThrows) {
  for (unsigned int threads : {1U, 4U}) {
    tree::thread_pool pool(threads);
    for (std::size_t count : {0U, 1U, 1000U}) {
      std::vector<int> done(count);
      pool.for_each(count, [&](std::size_t i) { ++done[i]; });
      EXPECT_THAT(done, testing::Each(1));
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

TEST(TaskStack, EndsOnAnyThreadsWhenAllTasksHaveEndedOrOneThrows) {
  for (const int failing : {-1, 500}) {
    tree::thread_pool pool(4);
    tree::task_stack tasks;
    std::atomic<int> done = 0;
    const std::function<void(int)> halve = [&](int count) {
      if (count == failing) throw std::runtime_error("task 500");
      for (int part : {count / 2, count - count / 2}) {
        if (count > 1) tasks.add([&halve, part] { halve(part); });
      }
      done += count == 1 ? 1 : 0;
    };
    tasks.add([&] { halve(1000); });
    EXPECT_EQ(message_of([&] { tasks.run(pool); }), failing < 0 ? "" : "task 500");
    EXPECT_TRUE(failing < 0 ? done == 1000 : done < 1000) << done;
  }
}

// Against the sum over the binomial distribution.
TEST(GainByChance, IsTheMeanOverAllWaysToDrawTheClasses) {
  const tree::gain_by_chance chance({{0, 6}, {2, 3}, {5, 3}});
  for (const double cases : {1.0, 2.0, 3.0, 7.0, 40.0, 300.0}) {
    double expected = 0;
    for (const double p : {0.5, 0.25, 0.25}) {
      double probability = std::pow(1 - p, cases - 1);  // that x of the others are of the class
      for (double x = 0; x < cases; ++x) {
        expected += p * probability * std::log2((1 + x) / (cases * p));
        probability *= (cases - 1 - x) / (x + 1) * p / (1 - p);
      }
    }
    EXPECT_NEAR(chance.of_value(cases + 0.4), expected, expected / 10) << cases;
    EXPECT_EQ(chance.of_value(cases - 0.4), chance.of_value(cases)) << cases;
  }
}

// The first number of each line is not among the cases, so it is never the threshold.
TEST(Grower, SeparatesNumbersWhoseMiddleOrTextWouldNot) {
  for (const char* line : {"1,1,inf", "1e-33,1e-33,2e-33", "1.2e-33,1e-33,2e-33",
                           "1.0000001,1.0000001,1.0000002", "3,1,5", "4,1,5", "2,-3,7"}) {
    const texts numbers = listed(line);  // other, low, high
    std::string csv = "a,c\n" + numbers[0] + ",x\n";
    for (int i = 0; i < 2; ++i) csv += numbers[1] + ",x\n" + numbers[2] + ",y\n";
    const table rows = load_csv(csv, options_of("type a float"));
    const decision_tree t = tree::grow_tree(rows, {rows.cases.begin() + 1, rows.cases.end()}, {});
    EXPECT_EQ(text_of(t, {1}), "a <= " + numbers[1] + ": x (2)\na > " + numbers[1] + ": y (2)\n");
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

// While the rest is pruned, a leaf stands where a part belongs.
TEST(Pruning, OfPartsBeforeTheRestIsThatOfTheWholeTree) {
  dice roll{8};
  std::size_t pruned_roots = 0;
  for (int i = 0; i < 80; ++i) {
    decision_tree t = grown(random_table(roll, 4), 1);
    auto nodes = t.nodes;
    std::map<std::size_t, double> errors;
    std::map<std::size_t, tree::tree_node> roots;
    const std::vector<std::size_t> parents = tree::node_parents(t);
    std::vector<bool> is_done(nodes.size());
    for (std::size_t part = 1; part < nodes.size(); ++part) {
      is_done[part] = is_done[parents[part]] || roll(4) == 0;
      if (!is_done[part] || is_done[parents[part]]) continue;
      std::swap(nodes[0], nodes[part]);
      errors[part] = tree::prune(nodes, 0.25F);
      std::swap(nodes[0], nodes[part]);
      pruned_roots += nodes[part].is_leaf() && !t.nodes[part].is_leaf() ? 1 : 0;
      roots[part] = std::exchange(nodes[part], {});
      nodes[part].class_weights = roots[part].class_weights;
    }
    EXPECT_EQ(tree::prune(nodes, 0.25F, errors), tree::prune(t.nodes, 0.25F));
    const std::string expected = text_of(t);
    for (const auto& [part, root] : roots) nodes[part] = root;
    t.nodes = nodes;
    EXPECT_EQ(text_of(t), expected);
  }
  EXPECT_GT(pruned_roots, 8U);
}

// In tables with unknown values, many values and noise: rows, their texts and the training cases
// take the same ways, each case counts once, and leaves show the class that they predict.
TEST(Classification, GivesTheSameForRowsAndForTheirTexts) {
  for (const char* name : {"housevotes84", "pima2", "soybean", "birdstrikes"}) {
    const std::string path = std::string(ARBOR_DATA "/") + name + ".csv";
    const table rows = tree::load_table(path, {});
    const decision_tree t = grown(rows, 5);
    std::ostringstream out;
    const auto by_text = tree::classify_table(path, t, {}, &out);
    EXPECT_EQ(by_text.quality->matrix().pairs(),
              tree::classify_cases(t, rows, rows.cases).matrix().pairs())
        << name;
    const tree::class_probabilities probabilities(t, std::vector<double>(t.nodes.size()));
    const std::vector<std::size_t> predicted = tree::predicted_classes(t);
    for (std::size_t i = 0; i < t.nodes.size(); ++i) {
      if (!t.nodes[i].is_leaf()) continue;
      EXPECT_EQ(predicted[i], tree::likeliest_class(probabilities.at_node(i))) << name << i;
    }
    double in_leaves = 0;
    for (const tree::tree_node& node : t.nodes) {
      double shares = node.is_leaf() ? 1 : 0;
      for (unsigned int i = 0; i < node.child_count; ++i)
        shares += static_cast<double>(t.nodes[node.first_child + i].share);
      EXPECT_NEAR(shares, 1, 1e-4) << name;
      in_leaves += node.is_leaf() ? tree::weigh(node).cases : 0;
    }
    EXPECT_NEAR(in_leaves / tree::weigh(t.nodes[0]).cases, 1, 0.003) << name;
    for (std::size_t i = 0; i < t.nodes.size(); i += t.nodes.size() / 20 + 1) {
      const w_sequence here = tree::cases_at_node(t, rows, i);
      EXPECT_NEAR(tree::total_weight(here) / tree::weigh(t.nodes[i]).cases, 1, 0.02) << name << i;
      for (const auto& weighted : here) EXPECT_GT(weighted.second, 0);
    }
  }
}

// Of many blocks and uneven weights: a whole file, and one with two faults.
TEST(Classification, IsTheSameOnAnyThreadsAndEndsAtTheFirstFault) {
  const decision_tree t = grown(load_csv("n,c\n1,x\n1,x\n2,y\n2,y\n2,x\n"));
  std::string rows;
  for (int i = 0; i < 30000; ++i)
    rows += (i % 500 == 7 ? "8O" : std::to_string(i % 4)) + ",x,0." + std::to_string(i % 97) + "\n";
  const temporary_file whole("n,c,w\n" + rows + rows),
      faulty("n,c,w\n" + rows + "1,x,-1\n" + rows + "1,x\n" + rows);
  tree::classification_options options;
  options.weights_name = "w";
  std::set<std::string> results;
  for (const unsigned int threads : {1U, 2U, 5U}) {
    options.threads = threads;
    std::ostringstream out, before_fault;
    const auto result = tree::classify_table(whole.path(), t, options, &out);
    EXPECT_EQ(result.rows, 60000);
    EXPECT_EQ(result.remarks.at(0).substr(whole.path().size()),
              ": column \"n\": 118 texts that are no numbers were taken as unknown, the first is "
              "\"8O\" in line 9");
    const std::string message =
        message_of([&] { tree::classify_table(faulty.path(), t, options, &before_fault); });
    EXPECT_EQ(message.substr(faulty.path().size(), 30), ":30002: column \"w\": \"-1\" is no");
    EXPECT_EQ(before_fault.str(), out.str().substr(0, before_fault.str().size()));
    const std::string written = before_fault.str();
    EXPECT_EQ(std::count(written.begin(), written.end(), '\n'), 30001);
    std::ostringstream bits;
    bits << std::hexfloat << result.quality->log_loss() << result.quality->brier_score();
    results.insert(out.str() + bits.str());
  }
  EXPECT_EQ(results.size(), 1);
}

// Which branch texts take of a test that has 2 on its first and 5 on its second one: 0 stands for
// both, as for an unknown value, and "!" for a text that is no number.
TEST(Classification, ComparesNumbersAsNumbersHoweverTheyAreWritten) {
  for (const auto& [chosen, expected_branches] : std::map<std::string, std::string>{
           {"integer kind a continuous",
            "-7:1 01:1 2.0:1 -1e99:1 2.0000000001:2 1e0001:2 inf:2 "
            "2.00000000000000000000000001:2 1.99999999999999999999999999:1"},
           {"decimal kind a continuous",
            "-7:1 01:1 2.0:1 20000000000000000000e-19:1 -1e300:1 -inf:1 0x2:1 0x2.1p0:2 1e0001:2 "
            "inf:2 2.000000000000000000000000000000000000000000000000000000000001:2 1e300:2"},
           {"decimal kind a discrete", "2.0:1 5e0:2 2.5:0 1e99:0 -inf:0 5.00000000000000000001:0"},
           {"uinteger kind a continuous", "-1:1 0:1 +2:1 2.5:2 4:2 1e10:2"},
           {"float kind a continuous", "2.00000001:1 -inf:1 0x1:1 2.1:2 1e99:2"},
           {"integer kind a discrete", "2.0:1 02:1 5e0:2 2.5:0 1e99:0 -inf:0 5.0000000000000001:0"},
           {"uinteger kind a discrete", "2.0:1 +5:2 -1:0 4294967296:0 -2:0"},
           {"double kind a discrete", "2.0:1 5e0:2 2.5:0"}}) {
    const decision_tree t =
        grown(load_csv("a,c\n2,x\n2,x\n5,y\n5,y\n", options_of("type a " + chosen)));
    tree::text_classifier classify(t);
    std::istringstream in(expected_branches + " ?:0 -:0! nan:0! 5x:0! +:0!");
    for (std::string expected; in >> expected;) {
      std::string text = expected.substr(0, expected.find(':'));
      const double first = classify({as_cell(text)}).distribution[0];
      EXPECT_EQ(text + ":" +
                    (first > 0.5   ? "1"
                     : first < 0.5 ? "2"
                                   : "0") +
                    (classify.unfit().empty() ? "" : "!"),
                expected);
    }
  }
}

// The other tables have other values, or other data types and kinds, of the columns d and n.
TEST(Classification, FindsTheWayOfRowsThatAnotherTableCodesOtherwise) {
  const std::string others = "d,n,c\nq,3,z\nr,3,w\nnew,3,w\np,0,x\np,3,y\np,1,x\n?,0,z\n",
                    fractions = "d,n,c\nq,1.75,z\np,1.5,x\np,1.4,y\np,-1e9,x\nr,?,y\np,2.5,y\n",
                    numbers = "d,n,c\n7,1,x\n1.5,5,x\n7.0,2,x\n", unknowns = "d,n,c\np,,x\nq,?,y\n";
  for (const char* const numbers_of_tree :
       {"n integer", "n float kind n discrete", "n decimal", "n decimal kind n discrete"}) {
    const std::string csv = "d,n,c\np,1,x\np,1,x\np,5,y\np,5,y\nq,1,z\nq,5,z\nr,2,w\n7,2,w\n";
    const decision_tree t =
        grown(load_csv(csv, options_of(std::string("type ") + numbers_of_tree)), 1);
    tree::text_classifier by_text(t);
    for (const auto& [table_of_others, words] :
         std::multimap<std::string, std::string>{{others, ""},
                                                 {others, "type n uinteger"},
                                                 {others, "type n float kind n ignore"},
                                                 {fractions, ""},
                                                 {fractions, "type n double kind n discrete"},
                                                 {others, "type n decimal"},
                                                 {numbers, ""},
                                                 {numbers, "type d string type n float"},
                                                 {unknowns, ""}}) {
      const table other = load_csv(table_of_others, options_of(words));
      tree::row_classifier classify(t, other);
      for (unsigned int row = 0; row < other.cases.size(); ++row) {
        std::string d = other.columns[0]->get_row_value(row);
        std::string n = other.columns[1]->get_row_value(row);
        EXPECT_EQ(classify(row).distribution, by_text({as_cell(d), as_cell(n)}).distribution)
            << words << row;
      }
    }
  }
  const decision_tree t = grown(load_csv("n,c\n1,x\n1,x\n2,y\n2,y\n"), 1);
  for (const auto& [csv, message] : std::map<std::string, std::string>{
           {"m,c\n1,x\n", "the table has no column of the name \"n\""},
           {"n,c\n1,x\nu,y\n",
            "the column \"n\" of the table has texts, which cannot be compared with a threshold"}})
    EXPECT_EQ(message_of([&] { tree::row_classifier(t, load_csv(csv)); }), message);
}

}  // namespace
}  // namespace arbor::tests
