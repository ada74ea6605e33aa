// The rating of splits: compared with a plainer version on random nodes, and with results known by
// hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <type_traits>

#include "arbor/model/measure/rainforest_quality.h"
#include "tests/support/oracle.h"

namespace arbor::tests {
namespace {

template <class T>
struct AnyWidth : testing::Test {};
using widths = testing::Types<unsigned char, unsigned short, unsigned int, unsigned long long>;
TYPED_TEST_SUITE(AnyWidth, widths);

// Makes the range of codes too wide for a counting sort.
void widen(node& n) {
  n.range.second += 20 * static_cast<unsigned int>(n.cases.size());
}

TYPED_TEST(AnyWidth, RatesRandomNodesAsThePlainFormulasDoByEveryMeasureAndWayOfSorting) {
  constexpr unsigned int top =
      sizeof(TypeParam) < 4 ? std::numeric_limits<TypeParam>::max() : top_code - 5000;
  dice roll{1};
  for (int i = 0; i < 400; ++i) {
    SCOPED_TRACE(i);
    node n = random_node(roll, top, weighing::even);
    const node bits = two_valued(n);
    const auto classes = class_column(n, roll(60));
    const w_sequence before = sequence_of(n);
    w_sequence cases = before;
    EXPECT_EQ(told(rate(*bits_of(bits, column::DISCRETE, roll(30)), bits, *classes, cases)),
              told(expected(bits, column::DISCRETE)));
    EXPECT_EQ(told(rate(*bits_of(bits, column::CONTINUOUS), bits, *classes, cases)),
              told(no_split(0)));
    EXPECT_EQ(told(rate(column(nullptr, "x", column::CONTINUOUS), n, *classes, cases)),
              told(no_split(untouched)));
    for (column::_type kind :
         {column::DISCRETE, column::CLASS, column::CONTINUOUS, column::WEIGHTS, column::IGNORE}) {
      const auto x = rated_column<TypeParam>(n, kind, roll(30));
      const rating actual = rate(*x, n, *classes, cases, roll(2) == 0);
      EXPECT_EQ(told(actual), told(expected(n, kind)));
      EXPECT_EQ(actual.split_column, x.get());
    }
    const auto x = rated_column<TypeParam>(n, column::CONTINUOUS, roll(30));
    const auto same = [](const auto& a, const auto& b) {
      return a.first == b.first && a.second == b.second;
    };
    cases = before;
    const std::string cut = told(expected_cut(n, false));
    EXPECT_EQ(told(rate(by::table, *x, n, *classes, cases)), told(expected_cut(n, true)));
    for (by measure : {by::value, by::pair_of_value_and_class})
      EXPECT_EQ(told(rate(measure, *x, n, *classes, cases)), told(expected_by_value(n)));
    EXPECT_EQ(told(rate(by::sorting, *x, n, *classes, cases)), cut);
    EXPECT_TRUE(std::equal(cases.begin(), cases.end(), before.begin(), before.end(), same));
    if (i % 2 == 0) widen(n);
    EXPECT_EQ(told(rate(by::sorting, *x, n, *classes, cases, false)), cut);
    const typename column_typed<TypeParam>::less_than_struct lower{x.get()};
    EXPECT_TRUE(std::is_sorted(cases.begin(), cases.end(), lower));
    EXPECT_TRUE(
        std::is_permutation(cases.begin(), cases.end(), before.begin(), before.end(), same));
  }
}

// Sums over cases have one value in each width, sort and class of column, since a copy is sorted
// stably.
TYPED_TEST(AnyWidth, RoundsUnevenWeightsAsThePlainFormulasDo) {
  dice roll{3};
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    node n = random_node(roll, 255, weighing::uneven);
    const node bits = two_valued(n);
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n), sorted = cases;
    EXPECT_EQ(told(rate(*bits_of(bits, column::DISCRETE, roll(30)), bits, *classes, cases)),
              told(expected(bits, column::DISCRETE)));
    const auto x = rated_column<TypeParam>(n, column::CONTINUOUS, roll(30));
    for (by measure : {by::value, by::pair_of_value_and_class})
      EXPECT_EQ(told(rate(measure, *x, n, *classes, cases)), told(expected_by_value(n)));
    for (by measure : {by::sorting, by::table}) {  // whose sums depend on the order of the cases
      const rating actual = rate(measure, *x, n, *classes, cases),
                   plain = expected_cut(n, measure == by::table);
      EXPECT_NEAR(std::max(actual.gain, 0.0F), std::max(plain.gain, 0.0F), 1e-5);
      // Gains that nearly tie, as the line before has shown.
      if (actual.low_code != plain.low_code) continue;
      EXPECT_EQ(actual.high_code, plain.high_code);
      EXPECT_NEAR(actual.split_info, plain.split_info, 1e-5);
    }

    std::stable_sort(sorted.begin(), sorted.end(), [&](const auto& a, const auto& b) {
      return n.cases[a.first / 2].code < n.cases[b.first / 2].code;
    });
    const auto narrow = code_column<unsigned char>(n, column::CONTINUOUS);
    const std::string cut = told(rate(by::sorting, *narrow, n, *classes, sorted));
    for (unsigned int choice : {0U, 1U, 2U, 3U}) {
      const auto any = rated_column<TypeParam>(n, column::CONTINUOUS, choice);
      EXPECT_EQ(told(rate(by::sorting, *any, n, *classes, cases)), cut);
      if (choice == 1) widen(n);
    }
  }
}

// Rates a node by any measure with short codes.
rating rate(by measure, const node& n) {
  w_sequence cases = sequence_of(n);
  return rate(measure, *code_column<unsigned short>(n, column::CONTINUOUS), n, *class_column(n, 0),
              cases);
}

TEST(CutMeasures, KeepAwayFromTheSidesByTheLeastWeight) {
  for (const auto& [known, min_weight, least] : {std::tuple{1000.0F, 2.0F, 10.0F},
                                                 {1000, 12, 12},
                                                 {5000, 2, 25},
                                                 {5000, 30, 25},
                                                 {5000, 60, 60}}) {
    for (const float side : {least, least - 0.125F, known - least, known - least + 0.125F}) {
      const node n({{1, 1, side}, {2, 2, known - side}}, 10, min_weight);
      for (by measure : {by::sorting, by::table})
        EXPECT_EQ(rate(measure, n).gain > 0, side == least || side == known - least) << side;
    }
  }
}

// The codes at both sides of the cut, and its gain.
std::string cut_in(const node& n, by measure) {
  const rating r = rate(measure, n);
  if (told(r) == told(no_split(2))) return "none";
  std::ostringstream text;
  text << r.low_code << "|" << r.high_code << " " << r.gain;
  return text.str();
}

TEST(CutMeasures, FindTheLowestOfTheBestCutsUnlessTheirNumberCostsTheGain) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float slightly_more = 32 + 3.0F / (1U << 18U);
  node unknown({{0, 1, 1}, {0, 2, 1}});
  unknown.range = {1, 9};
  struct {
    node n;
    std::string by_sorting, by_table;
    bool penalty_by_case_count = false;
  } table[] = {
      {node({{1, 1, 10}, {4, 2, 10}, {9, 1, 10}}), "1|4 0.218296", "1|4 0.218296"},
      {node({{1, 1, 1}, {4, 2, 1}, {9, 1, 1}}), "none", "none"},
      {unknown, "none", "none"},
      // A least weight that is not a number is none.
      {node({{1, 1, 10}, {2, 2, 10}}, 2, nan), "1|2 1", "1|2 1"},
      // No side is too light, since what it lacks is lost in rounding; the last code is no cut.
      {node({{1, 1, 0x1p29F}, {2, 2, 0x1p29F}}), "1|2 1", "1|2 1", true},
      // Mirrored cuts but for a weight so slight that it changes the entropy and not the gain.
      {node({{1, 1, 32}, {2, 1, 1}, {2, 2, 1}, {3, 2, slightly_more}}), "1|2 0.886232",
       "1|2 0.886232"},
      // By sorting, 1|2 is as good but inside a run of one class: counted, not tried.
      {node({{1, 1, 2}, {2, 1, 0}, {3, 2, 2}}), "2|3 0.75", "1|3 1"},
      // So it is inside a later run, between cuts that are tried.
      {node({{1, 1, 2}, {2, 2, 10}, {3, 2, 0}, {4, 1, 10}}), "3|4 0.567429", "2|4 0.594018"},
      // The penalty is as large as the gain.
      {node({{1, 1, 0.5F}, {2, 1, 0}, {3, 2, 0.5F}}), "none", "1|3 1"},
      {node({{1, 1, 0.5F}, {2, 1, 0}, {3, 2, 0.5F}}), "2|3 0.666667", "1|3 1", true}};
  for (auto& row : table) {
    row.n.penalty_by_case_count = row.penalty_by_case_count;
    EXPECT_EQ(cut_in(row.n, by::sorting), row.by_sorting);
    EXPECT_EQ(cut_in(row.n, by::table), row.by_table);
  }
  EXPECT_EQ(told(rate(by::value, table[3].n)), told(no_split(3)));
}

TEST(AnyMeasure, LetsTheErrorsOfTheClassColumnThrough) {
  const node n({{3, 2, 1}, {0, 1, 1}, {2, 1, 1}, {3, 2, 1}, {1, 1, 1}, {2, 2, 1}});
  const auto x = code_column<unsigned int>(n, column::CONTINUOUS);
  const auto classes = stored<user_classes>(n, &weighted_case::class_code, 2);
  for (by measure : {by::value, by::sorting, by::table}) {
    for (unsigned int reads = 0; reads < 5; ++reads) {  // every known case is read at least once
      classes->reads_left = reads;
      w_sequence cases = sequence_of(n);
      EXPECT_THROW(rate(measure, *x, n, *classes, cases, false), std::runtime_error) << reads;
      const column_typed<unsigned int>::less_than_struct lower{x.get()};
      EXPECT_EQ(std::is_sorted(cases.begin(), cases.end(), lower), measure == by::sorting) << reads;
    }
  }
}

// Any measure of a node gives the same with each of its class columns.
void expect_same_ratings(const node& n, std::initializer_list<column*> class_columns) {
  const auto x = code_column<unsigned short>(n, column::CONTINUOUS);
  for (by measure : {by::value, by::sorting, by::table}) {
    for (const bool copy : {true, false}) {
      std::set<std::string> ratings;
      for (column* classes : class_columns) {
        w_sequence cases = sequence_of(n);
        ratings.insert(told(rate(measure, *x, n, *classes, cases, copy)));
      }
      EXPECT_EQ(ratings.size(), 1U) << *ratings.begin();
    }
  }
}

// The class column of a node, whose class codes may be any.
std::unique_ptr<column> any_classes(node n) {
  n.known_values = n.classes;
  return code_column<unsigned char>(n, column::CLASS, 0, &weighted_case::class_code);
}

TEST(AnyMeasure, LeavesAClassThatIsNotKnownOutOfAllSums) {
  for (unsigned int classes : {2U, 3U}) {
    std::vector<weighted_case> list(200);
    for (unsigned int i = 0; i < 200; ++i)
      list[i] = {1 + i % 100, i % 10 == 0 ? 0 : 1 + (i % 100 > 40 ? 1U : 0U), 1};
    const node n(list, classes, 2);
    const auto read = class_column(n, 4);
    expect_same_ratings(n, {any_classes(n).get(), read.get()});
  }
}

// Its place in the table of a measure would be anywhere, and its column may end before.
TEST(AnyMeasure, DoesNotReadTheClassOfAnUnknownValue) {
  for (const float weight : {1.0F, 0.75F}) {
    const node n({{1, 1, 1}, {2, 2, 1}, {1, 1, 1}, {2, 2, 1}, {0, 2, weight}, {0, 1, weight}});
    node known = n, wild = n;
    known.cases.resize(4);
    wild.cases[4].class_code = wild.cases[5].class_code = 250;
    const auto whole = class_column(n, 0), stored = class_column(known, 0),
               users = class_column(known, 4);
    expect_same_ratings(n, {whole.get(), stored.get(), users.get(), any_classes(wild).get()});
  }
}

// A case that the samples of the weights miss.
TEST(AnyMeasure, RatesCasesOfWhichALateOneWeighsOtherwise) {
  for (unsigned int classes : {2U, 3U}) {
    std::vector<weighted_case> list(5000);
    for (unsigned int i = 0; i < 5000; ++i)
      list[i] = {1 + i % 3, 1 + (i % 7 < 4 ? i % classes : i % 3 % classes), 1};
    list[4990].weight = 1.5F;
    const node n(list, classes);
    EXPECT_EQ(told(rate(by::value, n)), told(expected_by_value(n))) << classes;
    EXPECT_EQ(told(rate(by::table, n)), told(expected_cut(n, true))) << classes;
    EXPECT_EQ(told(rate(by::sorting, n)), told(expected_cut(n, false))) << classes;
  }
}

// Rates a node by value and by table, from the last of the class tables of its cases' parts: each
// goes on from the numbers of the one before.
template <class Table>
std::string told_in_parts(const node& n, const column& x, const column& classes,
                          const std::vector<w_sequence>& parts) {
  constexpr bool is_counted = std::is_same_v<Table, impls::class_counts>;
  const auto size = static_cast<std::size_t>(Table::cell_count(n.range, classes.get_distinct()));
  auto table = std::make_unique<Table>(n.range, classes.get_distinct());
  for (const w_sequence& part : parts) {
    const auto before =
        std::exchange(table, std::make_unique<Table>(n.range, classes.get_distinct()));
    std::vector<typename Table::weight_type> rest(before->rest_count());
    before->put_rest(rest.data());
    table->take_rest(rest.data());
    std::copy_n(before->all_cells(), size, table->all_cells());
    impls::with_codes(x, [&](auto code_of) {
      impls::with_codes(classes, [&](auto class_of) {
        if constexpr (is_counted) table->count(code_of, class_of, part, impls::even_weight(part));
        if constexpr (!is_counted) table->add(code_of, class_of, part);
      });
    });
  }
  if constexpr (is_counted) table->finish(impls::even_weight(parts[0]).value());
  options opts{n.penalty_by_case_count};
  rating by_value = unrated, by_table = unrated;
  impls::rate_discrete(*table, n.total_weight, n.min_weight, by_value);
  impls::rate_rainforest(*table, n.range.first, n.total_weight, n.cases.size(), n.min_weight, &opts,
                         by_table);
  by_value.branches = n.known_values;  // as a column sets them
  by_table.branches = 2;
  return told(by_value) + told(by_table);
}

TEST(ClassTable, GoesOnFromThatOfTheCasesBefore) {
  dice roll{5};
  unsigned int even_nodes = 0;
  for (int i = 0; i < 600; ++i) {
    const node n = random_node(roll, 255, i % 2 == 0 ? weighing::even : weighing::uneven);
    const auto x = code_column<unsigned char>(n, column::CONTINUOUS);
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n);
    const auto first = cases.begin(), end = cases.end(),
               cut = first + 1 + roll(static_cast<unsigned int>(cases.size()));
    const std::vector<w_sequence> parts{{first, cut}, {}, {cut, end}};
    const std::string whole = told(rate(by::value, *x, n, *classes, cases)) +
                              told(rate(by::table, *x, n, *classes, cases));
    EXPECT_EQ(told_in_parts<impls::class_sums>(n, *x, *classes, parts), whole) << i;
    const impls::even_weight weight(cases);
    if (!weight.likely() || !weight.is_of_all(cases)) continue;
    EXPECT_EQ(told_in_parts<impls::class_counts>(n, *x, *classes, parts), whole) << i;
    ++even_nodes;
  }
  EXPECT_GT(even_nodes, 50U);
}

TEST(EightByteColumn, ReturnsThirtyTwoBitsOfTheCodesThatItOrdersInFull) {
  node n({{5, 2, 1}, {7, 2, 1}, {2, 1, 1}, {3, 1, 1}});
  const auto x = code_column<unsigned long long>(n, column::CONTINUOUS, (1ULL << 32U) - 4);
  EXPECT_EQ(x->get_row_index(3), 3U);
  EXPECT_TRUE(x->less_than(5, 3) && !x->less_than(3, 5));
  n.range = {1, 100};  // too wide for a counting sort
  for (const bool copy : {true, false}) {
    w_sequence cases = sequence_of(n);
    const rating r = rate(by::sorting, *x, n, *class_column(n, 0), cases, copy);
    EXPECT_TRUE(r.low_code == top_code && r.high_code == 1) << told(r);
  }
}

}  // namespace
}  // namespace arbor::tests
