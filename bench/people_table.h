// The people of agrawal.h as the rows of a table in CSV.
//
//   people_table table({{7, 0.05, 1}, 0.02, false});
//   std::string text = table.head();
//   for (int row = 0; row < 1000; ++row) table.append_row(text);
#ifndef ARBOR_BENCH_PEOPLE_TABLE_H
#define ARBOR_BENCH_PEOPLE_TABLE_H

#include <cstddef>
#include <cstdio>
#include <memory>
#include <random>
#include <string>

#include "bench/agrawal.h"

namespace arbor::bench {

class people_table {
 public:
  struct settings {
    agrawal::settings people{2, 0, 1};
    double unknown = 0;    // the share of cells of the attributes that are unknown, 0 to 1
    bool weights = false;  // a first column "weight" of 0.5, 1 and 1.5
  };

  explicit people_table(const settings& of_table);

  // The names of the columns, a line.
  std::string head() const;
  // Appends the line of the next person. The people are the same whatever else the table has.
  void append_row(std::string& text);

 private:
  settings chosen;
  agrawal people;
  std::mt19937_64 random;  // which cells are unknown, and the weights
};

// A file of such rows, gone with this object.
class people_file {
 public:
  people_file(const people_table::settings& settings, std::size_t rows);

  std::string path() const { return "/proc/self/fd/" + std::to_string(fileno(file.get())); }
  std::size_t size() const { return bytes; }

 private:
  std::unique_ptr<std::FILE, int (*)(std::FILE*)> file;
  std::size_t bytes = 0;
};

}  // namespace arbor::bench

#endif
