// The benchmarks, by what they time.
#ifndef ARBOR_BENCH_BENCHES_H
#define ARBOR_BENCH_BENCHES_H

#include "bench/sample.h"

namespace arbor::bench {

// `table` must outlive the run.
void add_measures(sample& table);   // the rating of splits
void add_partition(sample& table);  // taking the cases of a branch
void add_records();                 // saving and reloading columns
void add_text();                    // from text to codes
void add_loading();                 // from a file to a table
void add_trees();                   // growing whole trees
void add_classifying();             // the rows of a file

}  // namespace arbor::bench

#endif
