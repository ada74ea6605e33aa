#include <gtest/gtest.h>

#include "tests/support/oracle.h"

namespace arbor::tests {

// What a column answers, every number to its last bit, when the node's cases are a part of a
// sequence.
static std::string parted(const column& c, w_sequence cases, unsigned branch, float total,
                          const column::partition_desc& by) {
  float ratio = untouched;
  strata::util::pair<unsigned int, unsigned int> range{untouched, untouched};
  std::unique_ptr<w_sequence> result(new w_sequence);
  cases.insert(cases.begin(), {0, 1000});
  const auto call = [&] {
    return c.partition(cases.begin() + 1, cases.end(), branch, total, ratio, range, by);
  };
  std::ostringstream text;
  text.precision(9);
  text << message_of([&] { result.reset(call()); });
  for (const auto& part : *result)
    text << part.first << "*" << std::fabs(part.second) << " ";  // no -nan
  text << "share " << std::fabs(ratio) << " of " << range.first << "-" << range.second;
  return text.str();
}

// The same in the width of T, of whose codes only the low 32 bits count.
template <class T>
static std::string parts(const node& n, column::_type kind, unsigned int branch,
                         const std::string& threshold) {
  const auto x = code_column<T>(n, kind, static_cast<T>(5ULL << 32U));
  return parted(*x, sequence_of(n), branch, n.total_weight, {threshold, 2});
}

TEST(Partition, SendsCasesDownTheirBranchAndUnknownOnesByItsShare) {
  const node known({{1, 1, 1.0F}, {2, 1, 2.0F}, {0, 1, 1.0F}}),
      sized({{1, 1, 1.0F}, {3, 1, 1.0F}, {0, 1, 2.0F}});
  for (auto in :
       {parts<unsigned char>, parts<unsigned short>, parts<unsigned>, parts<unsigned long long>}) {
    EXPECT_EQ(in(known, column::DISCRETE, 1, "a"), "1*1 5*0.333333343 share 0.333333343 of 1-2");
    EXPECT_EQ(in(known, column::CLASS, 2, "a"), "3*2 5*0.666666687 share 0.666666687 of 2-3");
    EXPECT_EQ(in(known, column::DISCRETE, 0, "a"), "5*1 share 0.25 of 0-1");
    EXPECT_EQ(in(sized, column::CONTINUOUS, 1, "2"), "1*1 5*1.5 share 0.75 of 1-3");
    EXPECT_EQ(in(sized, column::CONTINUOUS, 2, "2"), "3*1 5*1 share 0.5 of 2-4");
    EXPECT_EQ(in(sized, column::CONTINUOUS, 3, "2"), "5*0 share 0 of 2-3");
    EXPECT_EQ(in(sized, column::CONTINUOUS, 2, "9"), "1*1 3*1 5*2 share 1 of 0-4");
    EXPECT_EQ(in(node({}), column::CONTINUOUS, 2, "2"), "share nan of 2-3");
  }
  const auto bits = make_column("discrete", "integer", listed("1,2,1"));
  EXPECT_EQ(parted(*bits, {{0, 1}, {1, 5}, {2, 2}}, 3, 8, {}), "0*1 2*2 share 0.375 of 3-4");
  EXPECT_EQ(parted(*bits, {{0, 1}, {1, 5}, {2, 2}}, 2, 8, {}), "1*5 share 0.625 of 2-3");
}

TEST(Partition, LeavesShareAndCodesAloneWhenItIsRefused) {
  const std::string text = "[column::partition] method not defined for column type '",
                    rest = "'share 77 of 77-77";
  for (const auto* k : {"weights", "ignore"})
    EXPECT_EQ(parted(*make_column(k, "float", {}), {}, 1, 4, {}), text + k + rest);
  EXPECT_EQ(parted(column(nullptr, "x", column::CLASS), {}, 1, 4, {}), text + "class" + rest);
  EXPECT_EQ(parted(column_bool(nullptr, "x", column::CONTINUOUS), {}, 1, 4, {}),
            text + "continuous" + rest);
  EXPECT_EQ(parted(*make_column("continuous", "integer", {}), {}, 1, 4, {"a", 2}),
            "a: _not an intshare 77 of 77-77");
}

}  // namespace arbor::tests
