// What may be done at once: columns rated and parted by several threads, as the grower of a tree
// does.
#include <gtest/gtest.h>

#include <thread>

#include "tests/support/oracle.h"

namespace arbor::tests {
namespace {

// A table of one node's cases in all widths, and in bits.
struct columns_of_node {
  columns_of_node(const node& values, const node& bits) {
    owned.push_back(code_column<unsigned char>(values, column::CONTINUOUS));
    owned.push_back(code_column<unsigned short>(values, column::DISCRETE));
    owned.push_back(code_column<unsigned int>(values, column::CONTINUOUS));
    owned.push_back(code_column<unsigned long long>(values, column::CONTINUOUS));
    owned.push_back(bits_of(bits, column::DISCRETE));
    for (const auto& x : owned) all.push_back(x.get());
  }

  std::vector<std::unique_ptr<column>> owned;
  std::vector<const column*> all;
};

// Twice as many threads as columns: each column is read by two at once, and all read one class
// column and the cases. The first round is also the first to need a table of logarithms.
TEST(Threads, RateAndPartTheColumnsOfATableAtOnce) {
  dice roll{11};
  for (unsigned int round = 0; round < 24; ++round) {
    std::vector<weighted_case> list =
        random_node(roll, 255, round % 2 == 0 ? weighing::even : weighing::uneven).cases;
    for (std::size_t i = 0; round % 3 == 0 && i < 2000; ++i)
      list.push_back({list[i].code, list[i].class_code, 1});
    for (weighted_case& c : list) c.weight = round % 4 == 0 ? 1 : c.weight;
    const node n(list, 17), bits = two_valued(n);
    const columns_of_node table(n, bits);
    const auto classes = class_column(n, round % 4);
    w_sequence cases = sequence_of(n);
    classes->get_distinct();  // the first question to a domain changes it
    for (const column* x : table.all) x->get_distinct();
    const auto answer = [&](std::size_t i) {
      const column& x = *table.all[i % table.all.size()];
      float share = 0;
      strata::util::pair<unsigned int, unsigned int> range{0, 0};
      const std::unique_ptr<w_sequence> part(
          x.partition(cases.begin(), cases.end(), 1, n.total_weight, share, range, {"2", 2}));
      return told(rate(x, &x == table.owned.back().get() ? bits : n, *classes, cases)) + " " +
             std::to_string(part->size()) + " " + std::to_string(share) + x.get_row_value(1) +
             x.find_threshold(1, 2);
    };
    std::vector<std::string> at_once(2 * table.all.size());
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < at_once.size(); ++i)
      threads.emplace_back([&, i] { at_once[i] = answer(i); });
    for (std::thread& thread : threads) thread.join();
    for (std::size_t i = 0; i < at_once.size(); ++i) EXPECT_EQ(at_once[i], answer(i));
  }
}

}  // namespace
}  // namespace arbor::tests
