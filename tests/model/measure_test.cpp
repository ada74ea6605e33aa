// The rating of splits: compared with a plainer version on random nodes, and with results known by
// hand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tests/support/oracle.h"

namespace arbor::tests {
namespace {

template <class T>
struct AnyWidth : testing::Test {};
using widths = testing::Types<unsigned char, unsigned short, unsigned int, unsigned long long>;
TYPED_TEST_SUITE(AnyWidth, widths);

// The codes of random nodes in a column of T are below this.
template <class T>
constexpr unsigned int top = sizeof(T) < 4 ? std::numeric_limits<T>::max() : top_code - 5000;

TYPED_TEST(AnyWidth, RatesRandomNodesAsThePlainFormulasDo) {
  dice roll{1};
  for (int i = 0; i < 400; ++i) {
    SCOPED_TRACE(i);
    const node n = random_node(roll, top<TypeParam>, weighing::even);
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n);
    for (column::_type kind :
         {column::DISCRETE, column::CLASS, column::CONTINUOUS, column::WEIGHTS, column::IGNORE}) {
      const auto x = rated_column<TypeParam>(n, kind, roll(30));
      const rating actual = rate(*x, n, *classes, cases, roll(2) == 0);
      EXPECT_EQ(told(actual), told(expected(n, kind)));
      EXPECT_EQ(actual.split_column, x.get());
    }
  }
}

TYPED_TEST(AnyWidth, CutsAlikeByTableAndByEitherWayOfSorting) {
  dice roll{2};
  for (int i = 0; i < 400; ++i) {
    SCOPED_TRACE(i);
    node n = random_node(roll, top<TypeParam>, weighing::even);
    const bool all_weigh =
        std::all_of(n.cases.begin(), n.cases.end(), [](const auto& c) { return c.weight > 0; });
    const auto classes = class_column(n, roll(60));
    const auto x = rated_column<TypeParam>(n, column::CONTINUOUS, roll(30));
    const w_sequence before = sequence_of(n);
    w_sequence cases = before;
    const std::string plain = told(expected_cut(n, false));
    EXPECT_EQ(told(rate(by::table, *x, n, *classes, cases)),
              all_weigh ? plain : told(expected_cut(n, true)));
    EXPECT_EQ(told(rate(by::sorting, *x, n, *classes, cases)), plain);
    const auto same = [](const auto& a, const auto& b) {
      return a.first == b.first && a.second == b.second;
    };
    EXPECT_TRUE(std::equal(cases.begin(), cases.end(), before.begin(), before.end(), same));

    if (i % 2 == 0)
      n.range.second +=
          20 * static_cast<unsigned int>(cases.size());  // too wide for a counting sort
    EXPECT_EQ(told(rate(by::sorting, *x, n, *classes, cases, false)), plain);
    EXPECT_TRUE(std::is_sorted(cases.begin(), cases.end(),
                               typename column_typed<TypeParam>::less_than_struct{x.get()}));
    EXPECT_TRUE(
        std::is_permutation(cases.begin(), cases.end(), before.begin(), before.end(), same));
  }
}

TYPED_TEST(AnyWidth, RoundsUnevenWeightsAsThePlainFormulasDo) {
  dice roll{3};
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    const node n = random_node(roll, top<TypeParam>, weighing::uneven);
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n);
    const auto x = rated_column<TypeParam>(n, column::CONTINUOUS, roll(30));
    EXPECT_EQ(told(rate(by::value, *x, n, *classes, cases)), told(expected_by_value(n)));
    for (by measure : {by::sorting, by::table}) {  // whose sums depend on the order of the cases
      const rating actual = rate(measure, *x, n, *classes, cases),
                   plain = expected_cut(n, measure == by::table);
      EXPECT_NEAR(std::max(actual.gain, 0.0F), std::max(plain.gain, 0.0F), 1e-5);
      if (actual.low_code != plain.low_code)
        continue;  // gains that nearly tie, as the line before has shown
      EXPECT_EQ(actual.high_code, plain.high_code);
      EXPECT_NEAR(actual.split_info, plain.split_info, 1e-5);
    }
  }
}

TEST(TwoValuedColumn, IsRatedByValueOrNotAtAll) {
  dice roll{4};
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    const node n =
        two_valued(random_node(roll, 255, i % 2 == 0 ? weighing::even : weighing::uneven));
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n);
    EXPECT_EQ(told(rate(*bits_of(n, column::DISCRETE, roll(30)), n, *classes, cases)),
              told(expected(n, column::DISCRETE)));
    EXPECT_EQ(told(rate(*bits_of(n, column::CONTINUOUS), n, *classes, cases)), told(no_split(0)));
  }
}

TEST(PlainColumn, GivesNoSplitAndLeavesTheRest) {
  const node n({{1, 1, 1}, {2, 2, 1}});
  w_sequence cases = sequence_of(n);
  const column plain(nullptr, "x", column::DISCRETE);
  EXPECT_EQ(told(rate(plain, n, *class_column(n, 0), cases)), told(no_split(untouched)));
}

// Rates a node by any measure with short codes.
rating rate(by measure, const node& n) {
  w_sequence cases = sequence_of(n);
  return rate(measure, *code_column<unsigned short>(n, column::CONTINUOUS), n, *class_column(n, 0),
              cases);
}
std::string told_codes(const rating& r) {
  return std::to_string(r.low_code) + "|" + std::to_string(r.high_code);
}

TEST(ValueMeasure, GainsTheWholeEntropyFromAPureSplit) {
  for (unsigned int k : {2U, 3U, 8U, 100U}) {
    std::vector<weighted_case> cases;
    for (unsigned int i = 1; i <= k; ++i) cases.push_back({i, i, 2});
    const rating known = rate(by::value, node(cases, k));
    EXPECT_NEAR(known.gain, std::log2(k), 2e-6);
    EXPECT_NEAR(known.split_info, std::log2(k), 2e-6);
    cases.push_back(
        {0, 1,
         2 * static_cast<float>(k)});  // half of it unknown: half the gain, and one more branch
    const rating half = rate(by::value, node(cases, k));
    EXPECT_NEAR(half.gain, std::log2(k) / 2, 2e-6);
    EXPECT_NEAR(half.split_info, std::log2(k) / 2 + 1, 2e-6);
  }
}

TEST(CutMeasures, KeepAwayFromTheSidesByTheLeastWeight) {
  struct {
    float known, min_weight, side;
  } const table[] = {{1000, 2, 10}, {1000, 12, 12}, {5000, 2, 25}, {5000, 30, 25}, {5000, 60, 60}};
  for (const auto& row : table) {
    for (by measure : {by::sorting, by::table}) {
      const auto splits = [&](float low, float high) {
        return rate(measure, node({{1, 1, low}, {2, 2, high}}, 10, row.min_weight)).gain > 0;
      };
      EXPECT_TRUE(splits(row.side, row.known - row.side) && splits(row.known - row.side, row.side))
          << row.known;
      EXPECT_FALSE(splits(row.side - 0.125F, row.known - row.side + 0.125F)) << row.known;
      EXPECT_FALSE(splits(row.known - row.side + 0.125F, row.side - 0.125F)) << row.known;
    }
  }
}

TEST(CutMeasures, KeepTheLowerOfTwoEqualCutsUnlessTheirNumberCostsTheGain) {
  for (by measure : {by::sorting, by::table}) {
    const rating r = rate(measure, node({{1, 1, 10}, {4, 2, 10}, {9, 1, 10}}));
    EXPECT_EQ(told_codes(r), "1|4");
    EXPECT_NEAR(r.gain, 0.918296 - 2.0 / 3 - 1.0 / 30, 1e-6);
    EXPECT_EQ(told(rate(measure, node({{1, 1, 1}, {4, 2, 1}, {9, 1, 1}}))), told(no_split(2)));
  }
}

// Of such weights no side is too light, since what it lacks is lost in rounding.
TEST(CutMeasures, DoNotCountACutBehindTheLastCodeHoweverHeavyTheCases) {
  node n({{1, 1, 0x1p29F}, {2, 2, 0x1p29F}});
  n.penalty_by_case_count = true;
  for (by measure : {by::sorting, by::table}) EXPECT_EQ(rate(measure, n).gain, 1);
}

// Cuts 1|2 and 2|3 mirror one another but for a weight so slight that it changes the entropy and
// not the gain.
TEST(CutMeasures, KeepTheLowerOfTwoCutsWhoseGainsRoundToTheSame) {
  const float slightly_more = 32 + 3.0F / (1U << 18U);
  const node n({{1, 1, 32}, {2, 1, 1}, {2, 2, 1}, {3, 2, slightly_more}});
  for (by measure : {by::sorting, by::table}) EXPECT_EQ(told_codes(rate(measure, n)), "1|2");
}

TEST(CutMeasures, FindNoneWhereNoValueIsKnown) {
  node n({{0, 1, 1}, {0, 2, 1}});
  n.range = {1, 9};
  for (by measure : {by::sorting, by::table}) EXPECT_EQ(told(rate(measure, n)), told(no_split(2)));
}

TEST(CutMeasures, DifferOnCasesWithoutWeight) {
  const std::vector<weighted_case> cases{{1, 1, 2}, {2, 1, 0}, {3, 2, 2}};
  const rating sorted = rate(by::sorting, node(cases)), tabled = rate(by::table, node(cases));
  EXPECT_EQ(told_codes(sorted), "2|3");  // 1|2 is as good but amid one class: counted, not tried
  EXPECT_EQ(sorted.gain, 0.75F);
  EXPECT_EQ(told_codes(tabled), "1|3");
  EXPECT_EQ(tabled.gain, 1);
  // So it is amid a later run, between cuts that are tried.
  EXPECT_EQ(told_codes(rate(by::sorting, node({{1, 1, 2}, {2, 2, 10}, {3, 2, 0}, {4, 1, 10}}))),
            "3|4");
  node light({{1, 1, 0.5F}, {2, 1, 0}, {3, 2, 0.5F}});
  EXPECT_EQ(told(rate(by::sorting, light)), told(no_split(2)));  // a penalty as large as the gain
  light.penalty_by_case_count = true;
  EXPECT_NEAR(rate(by::sorting, light).gain, 2.0 / 3, 1e-6);
}

TEST(AnyMeasure, LetsTheErrorsOfTheClassColumnThrough) {
  const node n({{3, 2, 1}, {0, 1, 1}, {2, 1, 1}, {3, 2, 1}, {1, 1, 1}, {2, 2, 1}});
  const auto x = code_column<unsigned int>(n, column::CONTINUOUS);
  for (by measure : {by::value, by::sorting, by::table}) {
    user_classes classes(2, column::CLASS);
    classes.add(n, &weighted_case::class_code);
    for (unsigned int reads = 0; reads < 5; ++reads) {  // every known case is read at least once
      classes.reads_left = reads;
      w_sequence cases = sequence_of(n);
      EXPECT_THROW(rate(measure, *x, n, classes, cases, false), std::runtime_error) << reads;
      const column_typed<unsigned int>::less_than_struct lower{x.get()};
      EXPECT_EQ(std::is_sorted(cases.begin(), cases.end(), lower), measure == by::sorting) << reads;
    }
  }
}

TEST(CutMeasures, LeaveAClassThatIsNotKnownOutOfAllSums) {
  for (unsigned int classes : {2U, 3U}) {
    node n(std::vector<weighted_case>(200), classes, 2);
    n.known_values = classes;
    for (unsigned int i = 0; i < 200; ++i)
      n.cases[i] = {1 + i % 100, i % 10 == 0 ? 0 : 1 + (i % 100 > 40 ? 1U : 0U), 1};
    n.total_weight = 200;
    n.range = {1, 101};
    user_classes classes_of(n.classes,
                            column::CLASS);  // in this order read, and counted, not packed
    classes_of.add(n, &weighted_case::class_code);
    node as_values = n;  // whose codes are the classes
    for (weighted_case& c : as_values.cases) c.code = c.class_code;
    const auto stored_classes = code_column<unsigned char>(as_values, column::CLASS);
    w_sequence cases = sequence_of(n);
    const auto x = code_column<unsigned short>(n, column::CONTINUOUS);
    for (by measure : {by::sorting, by::table}) {
      EXPECT_EQ(told(rate(measure, *x, n, *stored_classes, cases)),
                told(rate(measure, *x, n, classes_of, cases)));
    }
  }
}

// What has been counted is kept when a weight turns up that cannot be.
TEST(AnyMeasure, RatesCasesOfWhichALateOneWeighsOtherwise) {
  for (unsigned int classes : {2U, 3U}) {
    std::vector<weighted_case> list(5000);
    for (unsigned int i = 0; i < 5000; ++i)
      list[i] = {1 + i % 3, 1 + (i % 7 < 4 ? i % classes : i % 3 % classes), 1};
    list.back().weight = 1.5F;
    const node n(list, classes);
    EXPECT_EQ(told(rate(by::value, n)), told(expected_by_value(n))) << classes;
    EXPECT_EQ(told(rate(by::table, n)), told(expected_cut(n, true))) << classes;
  }
}

// Its place in the table of a measure would be anywhere, and its column may end before.
TEST(AnyMeasure, DoesNotReadTheClassOfAnUnknownValue) {
  for (const float weight : {1.0F, 0.75F}) {
    const node n({{1, 1, 1}, {2, 2, 1}, {1, 1, 1}, {2, 2, 2}, {0, 2, weight}, {0, 1, weight}});
    node known = n, wild = n;
    known.cases.resize(4);
    wild.cases[4].class_code = wild.cases[5].class_code = 250;
    user_classes unread(2, column::CLASS);
    unread.add(n, &weighted_case::class_code);
    unread.codes[9] = unread.codes[11] = user_classes::not_to_be_read;
    for (weighted_case& c : wild.cases) c.code = c.class_code;
    const std::unique_ptr<column> too_short = class_column(known, 0),
                                  too_high = code_column<unsigned char>(wild, column::CLASS);
    const auto x = code_column<unsigned short>(n, column::CONTINUOUS);
    for (by measure : {by::value, by::sorting, by::table}) {
      for (const bool copy : {true, false}) {
        w_sequence cases = sequence_of(n);
        const std::string full = told(rate(measure, *x, n, *class_column(n, 0), cases, copy));
        for (column* classes : {too_short.get(), too_high.get(), static_cast<column*>(&unread)}) {
          cases = sequence_of(n);
          EXPECT_EQ(told(rate(measure, *x, n, *classes, cases, copy)), full) << weight;
        }
      }
    }
  }
}

// So that float sums have one value: whatever width, sort and class of column, and however the range
// was told.
TYPED_TEST(AnyWidth, SortsACopyStably) {
  dice roll{5};
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    node n = random_node(roll, top<unsigned char>, weighing::uneven);
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n), sorted = cases;
    std::stable_sort(sorted.begin(), sorted.end(), [&](const auto& a, const auto& b) {
      return n.cases[a.first / 2].code < n.cases[b.first / 2].code;
    });
    const auto plain = code_column<unsigned char>(n, column::CONTINUOUS);
    const std::string expected_rating = told(rate(by::sorting, *plain, n, *classes, sorted));
    for (unsigned int choice : {0U, 1U}) {
      const auto x = rated_column<TypeParam>(n, column::CONTINUOUS, choice);
      EXPECT_EQ(told(rate(by::sorting, *x, n, *classes, cases)), expected_rating);
    }
    n.range.second += 20 * static_cast<unsigned int>(cases.size());  // too wide to be counted
    const auto x = rated_column<TypeParam>(n, column::CONTINUOUS, roll(30));
    EXPECT_EQ(told(rate(by::sorting, *x, n, *classes, cases)), expected_rating);
  }
}

TEST(CutMeasures, TakeALeastWeightThatIsNotANumberForNone) {
  const node n({{1, 1, 10}, {2, 2, 10}}, 2, std::numeric_limits<float>::quiet_NaN());
  for (by measure : {by::sorting, by::table}) EXPECT_EQ(rate(measure, n).gain, 1);
  EXPECT_EQ(told(rate(by::value, n)), told(no_split(n.known_values)));
}

TEST(EightByteColumn, TellsThirtyTwoBitsOfTheCodesThatItOrdersInFull) {
  // The codes of class 1 become the higher ones.
  constexpr auto high = 1ULL << 32U;
  auto x =
      code_column<unsigned long long>(node({{5, 2, 1}, {0, 1, 1}, {7, 2, 1}}), column::CONTINUOUS);
  const auto higher =
      code_column<unsigned long long>(node({{2, 1, 1}, {3, 1, 1}}), column::CONTINUOUS, high);
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  strata::inpout::ibinstream in(device);
  higher->bin_out(out);
  x->bin_in(in);  // rows 6 to 9
  node n({{5, 2, 1}, {0, 1, 1}, {7, 2, 1}, {2, 1, 1}, {3, 1, 1}});
  EXPECT_EQ(x->get_row_index(7), 2U);
  EXPECT_TRUE(x->less_than(5, 7));
  EXPECT_FALSE(x->less_than(7, 5));
  n.range = {1, 100};  // too wide for a counting sort
  for (const bool copy : {true, false}) {
    w_sequence cases = sequence_of(n);
    EXPECT_EQ(told_codes(rate(by::sorting, *x, n, *class_column(n, 0), cases, copy)), "7|2");
  }
}

}  // namespace
}  // namespace arbor::tests
