#include "tools/program.h"

#include <cerrno>
#include <cstring>
#include <iostream>
#include <string>

#include "tools/help_format.h"
#include "tools/messages.h"

namespace arbor::tools {

program::program(const std::string& name, const char* description, const char* help)
    : app(description, name) {
  app.formatter(std::make_shared<help_format>());
  app.require_subcommand(0, 1);
  app.set_version_flag("-V,--version", name + " " ARBOR_VERSION);
  app.footer(help + std::string("\n\n") + exit_status_help);
}

int program::run(int argc, const char* const* argv) {
  if (parse_command_line(app, argc, argv)) {
    for (const auto& command : commands) {
      if (command->chosen()) command->run();
    }
  }
  std::cout.flush();
  if (std::cout) return 0;
  complain(std::string("the results could not be written to standard output: ") +
           std::strerror(errno));
  return failure;
}

}  // namespace arbor::tools
