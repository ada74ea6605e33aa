// Times every unit of work and its bare loop. script/bench runs this and reports the ratios; by
// itself it takes the options of Google Benchmark.

#include <benchmark/benchmark.h>

#include "bench/benches.h"

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::AddCustomContext("compiler", "g++ " __VERSION__);
  benchmark::AddCustomContext("flags", ARBOR_BENCH_FLAGS);
  arbor::bench::sample table;
  arbor::bench::add_measures(table);
  arbor::bench::add_partition(table);
  arbor::bench::add_records();
  arbor::bench::add_text();
  arbor::bench::add_loading();
  arbor::bench::add_trees();
  arbor::bench::add_classifying();
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
