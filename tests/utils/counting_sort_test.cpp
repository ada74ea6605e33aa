#include "arbor/utils/counting_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "arbor/utils/pair.h"

namespace arbor::tests {
namespace {

using numbered_code = strata::util::pair<unsigned int, unsigned int>;
using code_list = std::vector<unsigned int>;

// Sorts the codes, the key number `failing` throwing. Returns what became of them; each must still
// be there.
code_list sorted(const code_list& codes, unsigned int low, unsigned int end, unsigned int unknown,
                 int failing = -1) {
  std::vector<numbered_code> list;
  for (unsigned int i = 0; i < codes.size(); ++i) list.push_back({i, codes[i]});
  const auto key = [&](const numbered_code& c) { return failing-- == 0 ? throw 0 : c.second; };
  try {
    strata::adt::counting_sort<numbered_code, decltype(key)>(list.begin(), list.end(), low, end,
                                                             key, unknown);
  } catch (int) {
  }
  code_list result;
  std::vector<bool> seen(codes.size());
  for (const numbered_code& c : list) {
    EXPECT_TRUE(!seen[c.first] && codes[c.first] == c.second) << "an element was lost or torn";
    seen[c.first] = true;
    result.push_back(c.second == 0 ? unknown : c.second);
  }
  return result;
}

TEST(CountingSort, OrdersRandomCodesWithTheUnknownOnesAtTheirKeyAndLosesNoneToAThrow) {
  std::mt19937 random(2);
  for (unsigned int round = 0; round < 600; ++round) {
    const unsigned int low = round % 5, width = 2 + round % 19,
                       unknown = low + (round % 2 == 0 ? 0 : round % width);
    code_list codes(round % 60);
    for (unsigned int& code : codes)
      code = random() % 4 == 0 ? 0 : low + static_cast<unsigned int>(random() % width);
    const code_list result = sorted(codes, low, low + width, unknown);
    EXPECT_TRUE(std::is_sorted(result.begin(), result.end())) << "round " << round;
    sorted(codes, low, low + width, unknown, static_cast<int>(round % 150));
  }
  for (const unsigned int end : {7U, 8U})
    EXPECT_EQ(sorted({7, 9, 8, 7}, 7, end, 7), code_list({7, 9, 8, 7})) << "at most one key";
}

}  // namespace
}  // namespace arbor::tests
