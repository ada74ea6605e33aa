// The program arbor: arguments in, one call, report out.

#include <unistd.h>

#include <iostream>
#include <new>

#include "tools/arbor_program.h"
#include "tools/messages.h"
#include "tools/one_machine.h"
#include "tools/terminal.h"

namespace arbor::tools {

namespace {

int run(int argc, const char* const* argv) {
  const terminal_guard guard(std::cout, prints_to_terminal());
  const one_machine place;
  arbor_program arbor(place);
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
