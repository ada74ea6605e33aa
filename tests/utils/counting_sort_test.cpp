#include "arbor/utils/counting_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

#include "arbor/utils/pair.h"

namespace arbor::tests {
namespace {

using weighted_case = strata::util::pair<unsigned int, unsigned int>;
using code_list = std::vector<unsigned int>;

// Sorts one case per code, the lookup numbered `failing` throwing; gives the rows in their order,
// always all of them.
code_list sorted_rows(const code_list& codes, unsigned int low, unsigned int end,
                      unsigned int unknown, int failing = -1) {
  std::vector<weighted_case> cases;
  for (const unsigned int code : codes)
    cases.push_back({static_cast<unsigned int>(cases.size()), code});
  const auto key = [&](const weighted_case& c) {
    return failing-- == 0 ? throw 0 : codes[c.first];
  };
  try {
    strata::adt::counting_sort<weighted_case, decltype(key)>(cases.begin(), cases.end(), low, end,
                                                             key, unknown);
  } catch (int) {
  }
  code_list rows;
  for (const weighted_case& c : cases) rows.push_back(c.second == codes[c.first] ? c.first : 0);
  EXPECT_EQ(std::set<unsigned int>(rows.begin(), rows.end()).size(), codes.size())
      << "a case was lost or torn";
  return rows;
}

TEST(CountingSort, OrdersRandomCasesByCodeWithTheUnknownOnesAtTheirKeyAndLosesNoneToAThrow) {
  std::mt19937 random(2);
  for (unsigned int round = 0; round < 600; ++round) {
    const unsigned int low = round % 5, width = 2 + round % 19,
                       unknown = low + (round % 2 == 0 ? 0 : round % width);
    code_list codes(round % 60), keys;
    for (unsigned int& code : codes)
      code = random() % 4 == 0 ? 0 : low + static_cast<unsigned int>(random() % width);
    for (const unsigned int row : sorted_rows(codes, low, low + width, unknown)) {
      keys.push_back(codes[row] == 0 ? unknown : codes[row]);
    }
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end())) << "round " << round;
    sorted_rows(codes, low, low + width, unknown, static_cast<int>(round % 150));
  }
}

TEST(CountingSort, LeavesARunOfOnePossibleKeyAsItIs) {
  EXPECT_EQ(sorted_rows({7, 9, 8, 7}, 7, 8, 7), code_list({0, 1, 2, 3}));
  EXPECT_EQ(sorted_rows({7, 9, 8, 7}, 7, 7, 7), code_list({0, 1, 2, 3}));
}

}  // namespace
}  // namespace arbor::tests
