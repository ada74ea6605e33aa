// The commands of the program arbor-mpi.
#ifndef ARBOR_TOOLS_ARBOR_MPI_PROGRAM_H
#define ARBOR_TOOLS_ARBOR_MPI_PROGRAM_H

#include "tools/program.h"
#include "tools/workplace.h"

namespace arbor::tools {

class arbor_mpi_program : public program {
 public:
  // `place` must outlive the program.
  explicit arbor_mpi_program(const workplace& place);

  // Whether the command line asks for statistics of the processes.
  bool wants_statistics() const { return statistics; }

 private:
  bool statistics = false;
};

}  // namespace arbor::tools

#endif
