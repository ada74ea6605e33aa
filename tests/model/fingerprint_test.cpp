// Ratings are the same bits on every build: in 32 and 64 bits, optimised or not.
#include <gtest/gtest.h>

#include "tests/support/oracle.h"

namespace arbor::tests {
namespace {

// Folds the text of a rating, which tells every bit of it, into a 64-bit FNV-1a hash.
void fold(unsigned long long& hash, const rating& r) {
  for (char c : told(r)) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
}

template <class T>
void fold_ratings(unsigned long long& hash, dice& roll) {
  for (int i = 0; i < 60; ++i) {
    const node n = random_node(roll, 255, weighing::uneven), bits = two_valued(n);
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n);
    const auto x = code_column<T>(n, column::CONTINUOUS);
    for (by measure : {by::value, by::sorting, by::table})
      fold(hash, rate(measure, *x, n, *classes, cases));
    fold(hash, rate(*bits_of(bits, column::DISCRETE), bits, *classes, cases));
  }
}

// A node of thousands of cases that all weigh the same, weigh whole numbers, or begin to be uneven
// somewhere.
node large_node(dice& roll, unsigned int weight_kind) {
  const unsigned int width = 2 + roll(roll(2) == 0 ? 40 : 20000), classes = 2 + roll(2) * roll(9),
                     noise = roll(3);
  std::vector<weighted_case> cases(1000 + roll(10000));
  const std::size_t even =
      weight_kind == 2 ? cases.size() : roll(static_cast<unsigned int>(cases.size()));
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const unsigned int code = roll(50) == 0 ? 0 : 1 + roll(width),
                       whole = weight_kind == 0 ? 1 : 1 + roll(3);
    const float weight = i < even || weight_kind == 0 ? static_cast<float>(whole)
                                                      : static_cast<float>(1 + roll(900)) / 997;
    cases[i] = {code, 1 + (roll(4) < noise ? roll(classes) : code * 5 / width % classes), weight};
  }
  return node(cases, classes, 2);
}

TEST(Ratings, OfLargeNodesHaveTheSameBitsOnEveryBuild) {
  dice roll{6};
  unsigned long long hash = 0xCBF29CE484222325ULL;
  for (unsigned int i = 0; i < 60; ++i) {
    const node n = large_node(roll, i % 4);
    const auto classes = class_column(n, roll(60));
    w_sequence cases = sequence_of(n);
    const auto x = code_column<unsigned int>(n, column::CONTINUOUS);
    for (by measure : {by::value, by::sorting, by::table})
      fold(hash, rate(measure, *x, n, *classes, cases));
    fold(hash, rate(by::sorting, *x, n, *classes, cases, false));
  }
  EXPECT_EQ(hash, 16500587077355726736ULL);
}

TEST(Ratings, HaveTheSameBitsOnEveryBuild) {
  dice roll{5};
  unsigned long long hash = 0xCBF29CE484222325ULL;
  fold_ratings<unsigned char>(hash, roll);
  fold_ratings<unsigned short>(hash, roll);
  fold_ratings<unsigned int>(hash, roll);
  fold_ratings<unsigned long long>(hash, roll);
  EXPECT_EQ(hash, 7443493918401932464ULL);
}

}  // namespace
}  // namespace arbor::tests
