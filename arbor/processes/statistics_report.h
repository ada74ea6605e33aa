// What each process has sent, and how long it took, for a person or a program.
#ifndef ARBOR_PROCESSES_STATISTICS_REPORT_H
#define ARBOR_PROCESSES_STATISTICS_REPORT_H

#include <ostream>

#include "arbor/processes/process_group.h"

namespace arbor::tree {

// Collective; each process writes to its own stream. A line of headings and a line for each phase
// and process: phase, process, seconds, processor seconds, bytes sent and messages sent; then the
// totals of each process and of all. At least two blanks separate the cells of a line, and a cell
// has no two blanks in it.
void write_statistics(std::ostream& out, process_group& group);

}  // namespace arbor::tree

#endif
