#include "arbor/utils/set.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <new>
#include <random>
#include <set>

#include "tests/support/columns.h"

static unsigned int allocations = 0;

void* operator new(std::size_t size) {
  ++allocations;
  if (void* storage = std::malloc(size)) return storage;
  throw std::bad_alloc();
}
void operator delete(void* storage) noexcept {
  std::free(storage);
}
void operator delete(void* storage, std::size_t /*size*/) noexcept {
  std::free(storage);
}

namespace arbor::tests {
namespace {

using strata::data_types::datatype;

template <class T>
T value_of(int number) {
  if constexpr (std::is_same_v<T, std::string>) {
    return static_cast<char>(number) + std::to_string(number);
  } else {
    return static_cast<T>(number) / (std::is_integral_v<T> ? 1 : 64);
  }
}

template <class T>
class ValueSet : public testing::Test {};
using value_types = testing::Types<int, unsigned int, float, double, std::string>;
TYPED_TEST_SUITE(ValueSet, value_types);

TYPED_TEST(ValueSet, GivesEveryValueOnceInOrderAndIsEmptyAfterwards) {
  std::mt19937 random(3);
  strata::adt::set<datatype<TypeParam>> builder;
  // How many different values, and their distance: multiples of 1339 meet in one slot of the cache.
  for (const auto& [different, distance] :
       {std::pair{0, 1}, {1, 1}, {50, 1}, {3, 1339}, {3000, 1}, {2900, -13390}}) {
    std::set<TypeParam> model;
    for (int draw = 0; draw < (different == 0 ? 0 : 4000); ++draw) {
      const int number =
          distance * static_cast<int>(random() % static_cast<unsigned int>(different));
      model.insert(value_of<TypeParam>(number));
      if (draw % 500 == 499) {
        builder.insert_all({value_of<TypeParam>(number)});
      } else {
        builder.insert(value_of<TypeParam>(number));
      }
    }
    const std::unique_ptr<std::vector<datatype<TypeParam>>> values(builder.get());
    EXPECT_EQ(*values, std::vector<datatype<TypeParam>>(model.begin(), model.end()));
    EXPECT_TRUE(std::unique_ptr<std::vector<datatype<TypeParam>>>(builder.get())->empty());
  }
}

// Infinity displaces a zero from its slot; after 256 of that the builder is compacted.
TEST(ValueSetOfNumbers, KeepsTheZeroThatWasInsertedFirst) {
  for (const double first : {0.0, -0.0}) {
    for (const int between : {0, 1, 300}) {
      for (const bool all_at_once : {false, true}) {
        strata::adt::set<datatype<double>> builder;
        for (int i = 0; i <= between; ++i) builder.insert(i % 2 == 0 ? first : HUGE_VAL);
        if (all_at_once) builder.insert_all({-first, HUGE_VAL});
        builder.insert(-first);
        const std::unique_ptr<std::vector<datatype<double>>> values(builder.get());
        EXPECT_EQ(values->size(), between > 0 || all_at_once ? 2U : 1U);
        EXPECT_EQ(std::signbit(values->front().value), std::signbit(first)) << between;
      }
    }
  }
}

TEST(ValueSetOfTexts, TakesRepeatsWithoutAnAllocation) {
  const auto domain = make_domain("string", {});
  const std::string text(100, 'x');
  for (const std::string& more : {text, text + "y"}) {
    domain->insert(more.c_str());
    const unsigned int before = allocations;
    for (int i = 0; i < 1000; ++i) domain->insert(text.c_str());
    EXPECT_EQ(allocations, before);
  }
  EXPECT_EQ(domain->size_of_known(), 2U);
}

}  // namespace
}  // namespace arbor::tests
