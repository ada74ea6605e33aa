#include "arbor/utils/set.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <set>
#include <string>

#include "arbor/utils/datatype.h"

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
      builder.insert(value_of<TypeParam>(number));
    }
    const std::unique_ptr<std::vector<datatype<TypeParam>>> values(builder.get());
    EXPECT_EQ(*values, std::vector<datatype<TypeParam>>(model.begin(), model.end()));
    EXPECT_TRUE(std::unique_ptr<std::vector<datatype<TypeParam>>>(builder.get())->empty());
  }
}

TEST(ValueSetOfNumbers, TellsTheZeroWithoutASignWheneverThereIsOne) {
  for (const unsigned int others : {0U, 300U}) {  // after so many repeats are absorbed as they come
    strata::adt::set<datatype<double>> builder;
    for (unsigned int i = 1; i <= others; ++i) builder.insert(i);
    for (const double zero : {-0.0, 0.0, -0.0}) builder.insert(zero);
    const std::unique_ptr<std::vector<datatype<double>>> values(builder.get());
    EXPECT_EQ(values->size(), others + 1);
    EXPECT_FALSE(std::signbit(values->front().value));
  }
}

}  // namespace
}  // namespace arbor::tests
