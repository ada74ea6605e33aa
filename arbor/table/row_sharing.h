// How processes load a table together: each of them reads a part of the rows, and all get the
// columns' domains. Loading on one machine needs none of this.
//
//   table own_rows = load_table(paths, options, sharing);
#ifndef ARBOR_TABLE_ROW_SHARING_H
#define ARBOR_TABLE_ROW_SHARING_H

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "arbor/csv/csv_table.h"
#include "arbor/csv/file_part.h"
#include "arbor/model/w_sequence.h"
#include "arbor/table/cells/distinct_cells.h"
#include "arbor/table/table_loader.h"

namespace arbor::tree {

// All processes call the same functions in the same order, each from one thread. Exceptions are
// those of agree.
class row_sharing {
 public:
  virtual ~row_sharing() = default;

  // Throws in all processes if one of them has failed.
  virtual void agree(const std::exception_ptr& own_failure) = 0;

  // Which parts of the files are this process's. `file` has read its names.
  virtual std::vector<file_part> own_parts(const csv_table& file) = 0;

  // Makes each number the sum of those of all processes.
  virtual void add_up(std::vector<std::uint64_t>& numbers) = 0;

  // Makes the distinct cells of each of some columns those of all rows.
  virtual void unite(std::vector<distinct_cells>& columns) = 0;

  // The weight of the cases of all processes, added up like that of the cases of one.
  virtual float total_weight(const impls::w_sequence& cases) = 0;
};

// Reads the files as load_table does; called by all of the processes that load the table together.
// Each gets the rows that `sharing` gives it; domains, remarks and total weight are those of the
// whole table. Throws what `sharing` throws if loading fails in any process. `progress` is called
// with the rows that this one has read.
table load_table(const std::vector<std::string>& paths, const load_options& options,
                 row_sharing& sharing);

}  // namespace arbor::tree

#endif
