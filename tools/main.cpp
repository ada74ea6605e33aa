// The program arbor: arguments in, one call, report out.

#include <unistd.h>

#include <iostream>
#include <memory>
#include <new>

#include "tools/classify_command.h"
#include "tools/grow_command.h"
#include "tools/messages.h"
#include "tools/one_machine.h"
#include "tools/program.h"
#include "tools/rate_command.h"
#include "tools/report_command.h"
#include "tools/show_command.h"
#include "tools/terminal.h"
#include "tools/validate_command.h"

namespace arbor::tools {

namespace {

constexpr const char* program_help = R"("arbor COMMAND --help" describes a command.

Examples:
  arbor rate golf.csv --class play
  arbor grow golf.csv --model golf.model
  arbor validate golf.csv
  arbor show golf.model
  arbor report golf.model golf.csv --output golf.html
  arbor classify golf.model tomorrow.csv)";

int run(int argc, const char* const* argv) {
  const terminal_guard guard(std::cout, prints_to_terminal());
  const one_machine place;
  program arbor("Decision trees from tables.", program_help);
  arbor.add(std::make_unique<rate_command>(arbor.parser(), place));
  arbor.add(std::make_unique<grow_command>(arbor.parser(), place));
  arbor.add(std::make_unique<validate_command>(arbor.parser()));
  arbor.add(std::make_unique<show_command>(arbor.parser()));
  arbor.add(std::make_unique<report_command>(arbor.parser()));
  arbor.add(std::make_unique<classify_command>(arbor.parser(), place));
  return arbor.run(argc, argv);
}

}  // namespace

const std::string_view program_name = "arbor";

void end_program(int status) noexcept {
  _exit(status);
}

}  // namespace arbor::tools

int main(int argc, char** argv) {
  try {
    return arbor::tools::run(argc, argv);
  } catch (const std::bad_alloc&) {
    arbor::tools::complain_of_memory();
  } catch (const std::exception& error) {
    arbor::tools::complain(error.what());
  }
  return arbor::tools::failure;
}
