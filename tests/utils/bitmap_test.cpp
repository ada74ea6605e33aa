#include "arbor/utils/bitmap.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/columns.h"

namespace arbor::tests {
namespace {

using strata::adt::bitmap;

TEST(Bitmap, CapacityGrowsByHalfOfItselfButAtLeastByAWord) {
  bitmap bits;
  EXPECT_EQ(bits.capacity(), 0U);
  for (const auto& [length, capacity] :
       {std::pair{1U, 32U}, {32, 32}, {33, 64}, {65, 96}, {97, 160}, {161, 256}}) {
    while (bits.size() < length) bits.push_back(true);
    EXPECT_EQ(bits.capacity(), capacity) << length;
  }
  for (const unsigned int bit_count : {993U, 1024U, 33U}) bits.reserve(bit_count);
  EXPECT_EQ(bits.capacity(), 1024U);
}

TEST(Bitmap, BehavesLikeAVectorOfBoolsButClearsWholeWords) {
  std::mt19937 random(1);
  for (unsigned int length = 1; length < 300; ++length) {
    bitmap bits, other;
    std::vector<bool> model;
    const auto expect_model = [&] {
      ASSERT_EQ(bits.size(), model.size());
      for (unsigned int i = 0; i < model.size(); ++i) ASSERT_EQ(bits[i], model[i]) << i;
    };
    for (unsigned int i = 0; i < length; ++i) {
      const auto draw = random();
      if (draw % 64 < 4) bits.reserve(i + 90);
      bits.push_back((draw & 1) != 0);
      other.push_back((draw & 2) != 0);
      model.push_back(length % 2 == 0 ? draw % 4 == 3 : draw % 4 != 0);
    }
    EXPECT_TRUE(length % 2 == 0 ? bits.and_op(other) : bits.or_op(other));
    EXPECT_FALSE(bits.and_op(bitmap()) || bits.or_op(bitmap()));
    bits.resize(length + length % 70);
    model.resize(bits.size());
    expect_model();
    bits.reset(length / 2);
    bits.set(length / 3);
    for (unsigned int i = 0; i < model.size(); ++i)
      model[i] = i == length / 3 || (model[i] && i / 32 != length / 64);
    expect_model();
    bits.clear();
    model.assign(model.size(), false);
    expect_model();
  }
}

TEST(Bitmap, CopiesShareBitsUntilOneGrowsAndShorteningIsTakenAndThenRefused) {
  auto source = std::make_unique<bitmap>();
  source->resize(32);
  bitmap copy = *source, heir = copy;
  source->set(3);
  copy.push_back(true);
  copy.set(4);
  EXPECT_TRUE(copy.get(3) && !source->get(4));
  source.reset();
  EXPECT_EQ(message_of([&] { heir.resize(3); }),
            "bitmap::resize cannot deal with shortening of bitmaps");
  EXPECT_EQ(heir.size(), 3U);
  heir.push_back(false);
  EXPECT_TRUE(heir[3]) << "a false bit is not written";
}

TEST(Bitmap, TheLargestLengthTakesItsMemoryAndIsNeverExceeded) {
  bitmap bits;
  bits.resize(4294967294);
  EXPECT_EQ(bits.capacity(), 4294967295U);
  bits.push_back(true);
  EXPECT_TRUE(bits[4294967294]);
  EXPECT_EQ(message_of([&] { bits.push_back(true); }), "bitmap maximum length exceeded.");
  EXPECT_EQ(bits.size(), 4294967295U);
}

}  // namespace
}  // namespace arbor::tests
