// Makes a table of columns in memory, as load_table makes it of the file that they would be written
// to: with the same data types, domains, codes and remarks. Numbers do not become texts.
//
//   const std::vector<double> temperatures{85, 80, 83};
//   const std::vector<std::int8_t> codes{0, 0, 1};
//   memory_table golf{"golf", {{"temperature", numbers_of(temperatures)},
//                              {"play", numbers_of(codes), {{"no", "yes"}}}}, 1};
//   const table made = make_table(golf);
#ifndef ARBOR_TABLE_MEMORY_TABLE_H
#define ARBOR_TABLE_MEMORY_TABLE_H

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "arbor/table/memory_column.h"
#include "arbor/table/table.h"

namespace arbor::tree {

struct memory_table {
  std::string name;                    // for messages and the origin of a tree
  std::vector<memory_column> columns;  // all of the same number of rows, at least one
  std::size_t class_index = 0;         // which of them is the class; all others are attributes
  const float* weights = nullptr;      // by row, finite and above 0; null if each row weighs 1
};

struct memory_options {
  // By attribute name: discrete, continuous or ignore.
  std::map<std::string, std::string> kinds;
  std::string kinds_from = "the kind";  // what messages call this choice
  // The number of threads, 0 for one on each core. The table is the same for any number.
  unsigned int threads = 0;
  // Called now and then by any of the threads. What it throws ends the work and is rethrown. May be
  // empty.
  std::function<void()> check;
};

// Rows are numbered from 0 in messages. Throws table_error, naming the column, if two columns have
// the same name or a different number of rows, for an unknown class, a weight that is not as
// described, and where load_table does; and std::bad_alloc. Nothing of `from` is needed afterwards.
table make_table(const memory_table& from, const memory_options& options = {});

}  // namespace arbor::tree

#endif
