// A CSV file of people, for as long as this object lives.
//
//   people_file people({{7, 0.05, 1}, 0, false}, 1000);
//   tree::table table = tree::load_table(people.path(), {});
#ifndef ARBOR_BENCH_PEOPLE_FILE_H
#define ARBOR_BENCH_PEOPLE_FILE_H

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>

#include "bench/people_table.h"

namespace arbor::bench {

class people_file {
 public:
  people_file(const people_table::settings& settings, std::size_t rows);

  std::string path() const { return "/proc/self/fd/" + std::to_string(fileno(file.get())); }

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file;
};

}  // namespace arbor::bench

#endif
