// Compares a unit of work with its bare loop: the plainest loop by hand over the same arrays that
// computes the same.
//
//   compare("sum : bare sum/1,000 numbers", {aim::ratio, 1.3}, [] {
//     const auto numbers = std::make_shared<std::vector<int>>(1000, 1);
//     expect(sum(*numbers) == bare_sum(*numbers), "the sums are equal");
//     return comparison{1000, [=] { benchmark::DoNotOptimize(sum(*numbers)); },
//                       [=] { benchmark::DoNotOptimize(bare_sum(*numbers)); }};
//   });
//
// The two are timed in turn, call by call, so that whatever disturbs the machine disturbs both.
#ifndef ARBOR_BENCH_COMPARISON_H
#define ARBOR_BENCH_COMPARISON_H

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <string>

namespace arbor::bench {

struct comparison {
  std::size_t items = 0;  // that one call of either works through; times are per item
  std::function<void()> unit;
  std::function<void()>
      bare;  // empty when there is none to compare with: the time itself is the result then
  std::function<void()> prepare = {};  // called before each call of the unit, off the clock
  std::size_t swept =
      0;  // unless 0, the difference of the two per so many items is a result as well
  bool by_clock = false;  // on all cores and timed by the clock: what several threads do
};

// What the result should be at most.
struct aim {
  enum kind { none, ratio, time, sweep };  // sweep: the difference per swept item
  kind of = none;
  double most = 0;  // ratio, or nanoseconds
};

// Adds a benchmark. `name` is its group, a stroke, and what is particular to it; `make` prepares it
// when its turn comes and throws when unit and bare loop do not compute the same.
void compare(const std::string& name, const aim& wanted, const std::function<comparison()>& make);

// Throws that `what` is not so, unless it is.
void expect(bool so, const char* what);

// Makes the compiler believe that what `result` points to is read.
template <class T>
void keep(T* result) {
  benchmark::DoNotOptimize(result);
  benchmark::ClobberMemory();
}

}  // namespace arbor::bench

#endif
