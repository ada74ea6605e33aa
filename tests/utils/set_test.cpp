#include "arbor/utils/set.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <new>

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

// Infinity displaces a zero from its slot; after 256 of that the builder is compacted.
TEST(ValueSet, KeepsTheZeroThatWasInsertedFirst) {
  for (const double first : {0.0, -0.0}) {
    for (const int between : {0, 1, 300}) {
      for (const bool all_at_once : {false, true}) {
        strata::adt::set<datatype<double>> builder;
        for (int i = 0; i <= between; ++i) builder.insert(i % 2 == 0 ? first : HUGE_VAL);
        if (all_at_once) builder.insert_all(std::vector<datatype<double>>(60, -first));
        builder.insert(-first);
        const std::unique_ptr<std::vector<datatype<double>>> values(builder.get());
        EXPECT_EQ(values->size(), between > 0 ? 2U : 1U);
        EXPECT_TRUE(std::unique_ptr<std::vector<datatype<double>>>(builder.get())->empty());
        EXPECT_EQ(std::signbit(values->front().value), std::signbit(first)) << between;
      }
    }
  }
}

TEST(ValueSet, TakesValuesOneByOneAndAllAtOnce) {
  strata::adt::set<datatype<std::string>> builder;
  for (const char* text : {"b", "d"}) builder.insert(std::string(text));
  builder.insert_all({{"c"}, {"b"}, {"a"}});
  builder.insert(std::string("c"));
  const std::unique_ptr<std::vector<datatype<std::string>>> values(builder.get());
  EXPECT_EQ(*values, (std::vector<datatype<std::string>>{{"a"}, {"b"}, {"c"}, {"d"}}));
}

TEST(ValueSet, TakesRepeatsWithoutAnAllocation) {
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
