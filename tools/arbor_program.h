// The commands of the program arbor.
#ifndef ARBOR_TOOLS_ARBOR_PROGRAM_H
#define ARBOR_TOOLS_ARBOR_PROGRAM_H

#include "tools/program.h"
#include "tools/workplace.h"

namespace arbor::tools {

class arbor_program : public program {
 public:
  // `place` must outlive the program.
  explicit arbor_program(const workplace& place);
};

}  // namespace arbor::tools

#endif
