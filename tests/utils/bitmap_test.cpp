#include "arbor/utils/bitmap.h"

#include <gmock/gmock.h>

#include <memory>
#include <random>
#include <vector>

namespace arbor::tests {
namespace {

using strata::adt::bitmap;
using testing::ThrowsMessage;

std::vector<bool> content(const bitmap& bits) {
  std::vector<bool> result;
  for (unsigned int i = 0; i < bits.size(); ++i) result.push_back(bits[i]);
  return result;
}

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
    ASSERT_EQ(content(bits), model);
    bits.reset(length / 2);
    bits.set(length / 3);
    for (unsigned int i = 0; i < model.size(); ++i)
      model[i] = i == length / 3 || (model[i] && i / 32 != length / 64);
    ASSERT_EQ(content(bits), model);
    bits.clear();
    ASSERT_EQ(content(bits), std::vector<bool>(model.size()));
  }
}

TEST(Bitmap, ShorteningIsTakenAndThenRefused) {
  bitmap bits;
  while (bits.size() < 20) bits.push_back(true);
  EXPECT_THAT(
      [&] { bits.resize(10); },
      ThrowsMessage<std::runtime_error>("bitmap::resize cannot deal with shortening of bitmaps"));
  EXPECT_EQ(bits.size(), 10U);
  bits.push_back(false);
  EXPECT_TRUE(bits.get(10)) << "a false bit is not written";
}

TEST(Bitmap, CopiesShareBitsUntilOneGrows) {
  auto source = std::make_unique<bitmap>();
  source->resize(32);
  bitmap copy = *source;
  const bitmap heir = copy;
  source->set(3);
  copy.push_back(true);
  copy.set(4);
  EXPECT_TRUE(copy.get(3) && !source->get(4));
  source.reset();
  EXPECT_TRUE(heir[3]);
}

TEST(Bitmap, TheLargestLengthTakesItsMemoryAndIsNeverExceeded) {
  bitmap bits;
  bits.resize(4294967294);
  EXPECT_EQ(bits.capacity(), 4294967295U);
  bits.push_back(true);
  EXPECT_TRUE(bits[4294967294]);
  EXPECT_THAT([&] { bits.push_back(true); },
              ThrowsMessage<std::runtime_error>("bitmap maximum length exceeded."));
  EXPECT_EQ(bits.size(), 4294967295U);
}

}  // namespace
}  // namespace arbor::tests
