#include "tools/arbor_mpi_program.h"

#include "tools/classify_command.h"
#include "tools/grow_command.h"
#include "tools/help_command.h"
#include "tools/rate_command.h"

namespace arbor::tools {

namespace {

constexpr const char* arbor_mpi_help =
    R"("arbor-mpi help COMMAND" describes a command. Each takes the options of arbor,
and prints and saves the same. The rows of a table are shared out among the
processes, so that it need not fit into the memory of one machine.

Examples:
  mpirun -n 4 arbor-mpi grow big.csv --model big.model
  mpirun -n 4 arbor-mpi rate part-*.csv --statistics
  mpirun -n 4 arbor-mpi classify big.model new.csv --output predicted.csv)";

}  // namespace

arbor_mpi_program::arbor_mpi_program(const workplace& place)
    : program("arbor-mpi", "Decision trees from tables, grown by several processes.",
              arbor_mpi_help) {
  add(std::make_unique<rate_command>(parser(), place));
  add(std::make_unique<grow_command>(parser(), place));
  add(std::make_unique<classify_command>(parser(), place));
  for (CLI::App* command : parser().get_subcommands({})) {
    command->add_flag("--statistics", statistics,
                      "Print at the end, on standard error, how long each phase took in each "
                      "process, and what it sent");
  }
  add(std::make_unique<help_command>(parser()));
}

}  // namespace arbor::tools
