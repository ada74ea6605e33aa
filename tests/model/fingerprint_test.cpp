// Ratings are the same bits on every build: in 32 and 64 bits, optimised or not.
#include <gtest/gtest.h>

#include "tests/support/oracle.h"

namespace arbor::tests {

// A node of thousands of cases that all weigh the same, weigh whole numbers, or begin to be uneven
// somewhere.
static node large_node(dice& roll, unsigned int weight_kind) {
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

TEST(Ratings, HaveTheSameBitsOnEveryBuild) {
  dice roll{6};
  unsigned long long hash = 0xCBF29CE484222325ULL;  // 64-bit FNV-1a, over the texts of all ratings
  for (unsigned int i = 0; i < 60; ++i) {
    for (const node& n : {large_node(roll, i % 4), random_node(roll, 255, weighing::uneven)}) {
      const node bits = two_valued(n);
      const auto classes = class_column(n, roll(60));
      const auto x = code_column<unsigned int>(n, column::CONTINUOUS);
      w_sequence cases = sequence_of(n);
      std::string ratings = told(rate(*bits_of(bits, column::DISCRETE), bits, *classes, cases));
      for (by measure : {by::value, by::sorting, by::table})
        ratings += told(rate(measure, *x, n, *classes, cases));
      ratings += told(rate(by::sorting, *x, n, *classes, cases, false));
      for (char c : ratings) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ULL;
    }
  }
  EXPECT_EQ(hash, 17633725396298293106ULL);
}

}  // namespace arbor::tests
