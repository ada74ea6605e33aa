#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

#include "arbor/utils/bitmap.h"
#include "arbor/utils/counting_sort.h"
#include "arbor/utils/set.h"
#include "tests/support/allocations.h"
#include "tests/support/columns.h"

namespace arbor::tests {

using strata::adt::bitmap;
using strata::data_types::datatype;

TEST(Bitmap, CapacityGrowsByHalfOfItselfButAtLeastByAWordUpToTheLargestLength) {
  bitmap bits;
  for (const auto& [length, capacity] :
       {std::pair{0U, 0U}, {1, 32}, {32, 32}, {33, 64}, {65, 96}, {97, 160}, {161, 256}}) {
    while (bits.size() < length) bits.push_back(true);
    EXPECT_EQ(bits.capacity(), capacity) << length;
  }
  for (const unsigned int bit_count : {993U, 1024U, 33U}) bits.reserve(bit_count);
  EXPECT_EQ(bits.capacity(), 1024U);
  bits.resize(4294967294);
  EXPECT_EQ(bits.capacity(), 4294967295U);
  bits.push_back(true);
  EXPECT_EQ(message_of([&] { bits.push_back(true); }), "bitmap maximum length exceeded.");
  EXPECT_TRUE(bits.size() == 4294967295U && bits[160] && bits[4294967294]);
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

TEST(CountingSort, OrdersTheCodesOfTwoKeysOrMoreAndLosesNoneToAThrow) {
  std::mt19937 random(2);
  for (unsigned int round = 0; round < 1200; ++round) {
    const unsigned int low = round % 5, keys = round % 21, range = keys < 2 ? 9 : keys,
                       unknown = low + (round % 2 == 0 ? 0 : round % range);
    std::vector<unsigned int> codes(round % 59);
    for (unsigned int& code : codes)
      code = random() % 4 == 0 ? 0 : low + static_cast<unsigned int>(random() % range);
    auto sorted = codes;
    unsigned int until_throw = round % 150;
    const auto key = [&](unsigned int c) { return until_throw-- == 0 ? throw 0 : c; };
    const auto less = [=](auto a, auto b) {
      return (a == 0 ? unknown : a) < (b == 0 ? unknown : b);
    };
    try {
      strata::adt::counting_sort<unsigned int, decltype(key)>(sorted.begin(), sorted.end(), low,
                                                              low + keys, key, unknown);
      EXPECT_TRUE(keys < 2 ? sorted == codes : std::is_sorted(sorted.begin(), sorted.end(), less));
    } catch (int) {
    }
    EXPECT_TRUE(std::is_permutation(codes.begin(), codes.end(), sorted.begin())) << round;
  }
}

// Infinity displaces a zero from its slot; after 256 of that the builder is compacted.
template <class Number>
void keep_the_first_zero() {
  using value = datatype<Number>;
  for (const Number first : {Number(0), -Number(0)}) {
    for (const int others : {0, 1, 300, 3000}) {
      for (const bool all_at_once : {false, true}) {
        strata::adt::set<value> builder;
        for (int i = 0; i <= others; ++i)
          builder.insert(i == 0 ? first : Number(1 << 20) / -Number(i));
        std::vector<value> more(60, -first);
        for (const Number last : {Number(5), Number(HUGE_VAL), Number(NAN), Number(NAN)})
          more.push_back(last);
        if (all_at_once) builder.insert_all(more);
        for (int i = 0; i < 2; ++i) builder.insert(-first);
        const std::unique_ptr<std::vector<value>> values(builder.get());
        const std::size_t zero = static_cast<std::size_t>(others);
        ASSERT_EQ(values->size(), zero + 1 + (all_at_once ? 4 : 0));
        EXPECT_TRUE(std::unique_ptr<std::vector<value>>(builder.get())->empty());
        EXPECT_EQ(values->at(zero), value(0));
        EXPECT_EQ(std::signbit(values->at(zero).value), std::signbit(first)) << others;
        EXPECT_TRUE(std::is_sorted(values->begin(), values->begin() + others));
        EXPECT_EQ(std::isnan(values->back().value), all_at_once);
      }
    }
  }
}

TEST(ValueSet, KeepsEachValueOnceAndTheZeroThatWasInsertedFirst) {
  keep_the_first_zero<float>();
  keep_the_first_zero<double>();
}

TEST(ValueSet, TakesRepeatsWithoutAnAllocation) {
  const std::string text(100, 'x');
  const auto domain = make_domain("string", {text});
  for (const std::string& more : {text, text + "y"}) {
    domain->insert(more.c_str());
    fail(failing::all_later);
    for (int i = 0; i < 1000; ++i) domain->insert(text.c_str());
    EXPECT_FALSE(fail(failing::none));
  }
  EXPECT_EQ(domain->size_of_known(), 2U);
}

}  // namespace arbor::tests
