// Loads a table that processes share.
//
//   const table own_rows = load_shared_table(group, {"golf.csv"}, options);
#ifndef ARBOR_PROCESSES_SHARED_LOADING_H
#define ARBOR_PROCESSES_SHARED_LOADING_H

#include <string>
#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/table/table.h"
#include "arbor/table/table_loader.h"

namespace arbor::tree {

// Collective. Reads the files like load_table, with the same table and the same messages. Process 0
// gets the first of the rows that load_table gives, and each process those after the ones of the
// process before, perhaps none: in `cases` and, by number from 0, in the columns. All else is that
// of the whole table: domains, remarks and the total weight.
//
// All processes find the files under the same paths. Standard input and pipes are refused if there
// are several processes. The rows of a process and the values of a column may be up to 4294967295
// together.
//
// Each process has the domains of all columns: they have to fit into its memory, and so do the
// distinct cells of 4 columns or, if that is more, of so many columns that they have 16 million
// cells in the whole table.
//
// Throws agreed_failure, and std::bad_alloc when memory gets short while processes wait for this
// one.
table load_shared_table(process_group& group, const std::vector<std::string>& paths,
                        const load_options& options);

}  // namespace arbor::tree

#endif
