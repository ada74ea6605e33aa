// Shares out the files of a table among processes: the first rows to the first process, and so on.
#ifndef ARBOR_PROCESSES_FILE_SHARING_H
#define ARBOR_PROCESSES_FILE_SHARING_H

#include <string>
#include <vector>

#include "arbor/csv/csv_table.h"
#include "arbor/csv/file_part.h"
#include "arbor/processes/process_group.h"

namespace arbor::tree {

// Throws table_error for what only one process can read: standard input, pipes and the like.
void check_can_be_shared(const std::vector<std::string>& paths);

// Collective; `file` has read its names and is the same in every process. Returns the parts of this
// process.
//
// Whole files go to the processes, about as many bytes to each, if there are enough of them or one
// cannot be divided. Otherwise each process gets an equal part of the bytes of all files, moved to
// the next beginnings of rows. It first counts the quotes in its part, so that all know which line
// ends are within quotes. A row begins in another place than that only after a misplaced quote, at
// which reading ends anyway.
//
// Throws agreed_failure.
std::vector<file_part> own_parts(process_group& group, const csv_table& file);

}  // namespace arbor::tree

#endif
