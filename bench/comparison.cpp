#include "bench/comparison.h"

#include <sched.h>

#include <cstring>
#include <ctime>
#include <exception>
#include <stdexcept>

namespace arbor::bench {

namespace {

// The time this process has spent on the processor, in seconds: waiting for others to leave the
// core is not counted.
double processor_time() {
  timespec now{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double clock_time() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double time_of(const std::function<void()>& call, bool by_clock) {
  const auto now = by_clock ? clock_time : processor_time;
  const double start = now();
  call();
  return now() - start;
}

// Lets this thread and those that it starts run on any core, until the end of the scope.
class all_cores {
 public:
  explicit all_cores(bool wanted) : changed(wanted) {
    if (!changed) return;
    cpu_set_t all;
    std::memset(&all, 0xFF, sizeof all);
    sched_getaffinity(0, sizeof before, &before);
    sched_setaffinity(0, sizeof all, &all);
  }
  all_cores(const all_cores&) = delete;
  all_cores& operator=(const all_cores&) = delete;
  ~all_cores() {
    if (changed) sched_setaffinity(0, sizeof before, &before);
  }

 private:
  bool changed;
  cpu_set_t before{};
};

void alternate(benchmark::State& state, const comparison& pair, const aim& wanted) {
  double unit = 0;
  double bare = 0;
  const all_cores cores(pair.by_clock);
  while (state.KeepRunning()) {
    if (pair.bare) bare += time_of(pair.bare, pair.by_clock);
    if (pair.prepare) pair.prepare();
    const double seconds = time_of(pair.unit, pair.by_clock);
    unit += seconds;
    state.SetIterationTime(seconds);
  }
  const double calls_ns = 1e9 / static_cast<double>(state.iterations());
  const auto items = static_cast<double>(pair.items);
  state.counters["unit_ns"] = unit * calls_ns / items;
  if (pair.bare) {
    state.counters["bare_ns"] = bare * calls_ns / items;
    state.counters["ratio"] = unit / bare;
  }
  if (pair.swept != 0)
    state.counters["sweep_ns"] = (unit - bare) * calls_ns / static_cast<double>(pair.swept);
  if (wanted.of == aim::ratio) state.counters["aim_ratio"] = wanted.most;
  if (wanted.of == aim::time) state.counters["aim_unit_ns"] = wanted.most;
  if (wanted.of == aim::sweep) state.counters["aim_sweep_ns"] = wanted.most;
}

}  // namespace

void compare(const std::string& name, const aim& wanted, const std::function<comparison()>& make) {
  const auto run = [=](benchmark::State& state) {
    try {
      // One comparison at a time: a benchmark is run many times in a row, and the arrays of all
      // would fill the memory.
      static std::string prepared;
      static comparison pair;
      if (prepared != name) {
        prepared.clear();
        pair = {};
        pair = make();
        prepared = name;
      }
      alternate(state, pair, wanted);
    } catch (const std::exception& error) {
      state.SkipWithError(error.what());
    }
  };
  benchmark::RegisterBenchmark(name.c_str(), run)->UseManualTime()->Unit(benchmark::kMillisecond);
}

void expect(bool so, const char* what) {
  if (!so) throw std::logic_error(std::string("not so: ") + what);
}

}  // namespace arbor::bench
