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
    const code_column<T> x(n, column::CONTINUOUS);
    for (by measure : {by::value, by::sorting, by::table}) fold(hash, rate(measure, x, n, *classes, cases));
    fold(hash, rate(*bits_of(bits, column::DISCRETE), bits, *classes, cases));
  }
}

TEST(Ratings, HaveTheSameBitsOnEveryBuild) {
  dice roll{5};
  unsigned long long hash = 0xCBF29CE484222325ULL;
  fold_ratings<unsigned char>(hash, roll);
  fold_ratings<unsigned short>(hash, roll);
  fold_ratings<unsigned int>(hash, roll);
  fold_ratings<unsigned long long>(hash, roll);
  EXPECT_EQ(hash, 14843742469977192885ULL);
}

}  // namespace
}  // namespace arbor::tests
