#include <gtest/gtest.h>

#include "arbor/table/value_text.h"
#include "tests/support/columns.h"

namespace arbor::tests {
namespace {

TEST(ShortestText, GivesTheCodeAgainWherePrintingDoesNot) {
  const auto numbers = make_column(
      "continuous", "float", listed("-inf,-1e-33,1e-45,1e-33,1.00001e-28,0.1,3.4028235e38,inf"));
  for (unsigned int code = 1; code <= 8; ++code)
    EXPECT_EQ(numbers->get_index(tree::shortest_value(*numbers, code).c_str()), code);
  EXPECT_EQ(tree::shortest_value(*numbers, 6) + tree::shortest_value(*numbers, 0), "0.1?");
}

}  // namespace
}  // namespace arbor::tests
