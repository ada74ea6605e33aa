// The people of agrawal.h as the rows of a table in CSV.
//
//   people_table table({{7, 0.05, 1}, 0.02, false});
//   std::string text = table.head();
//   for (int row = 0; row < 1000; ++row) table.append_row(text);
#ifndef ARBOR_BENCH_PEOPLE_TABLE_H
#define ARBOR_BENCH_PEOPLE_TABLE_H

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

}  // namespace arbor::bench

#endif
