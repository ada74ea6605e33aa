// The program arbor: arguments in, one call, report out.

#include <cerrno>
#include <cstring>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "tools/classify_command.h"
#include "tools/grow_command.h"
#include "tools/help_format.h"
#include "tools/messages.h"
#include "tools/rate_command.h"
#include "tools/show_command.h"
#include "tools/terminal.h"
#include "tools/validate_command.h"

namespace {

constexpr int failure = 2;

constexpr const char* program_help = R"("arbor COMMAND --help" describes a command.

Examples:
  arbor rate golf.csv --class play
  arbor grow golf.csv --model golf.model
  arbor validate golf.csv
  arbor show golf.model
  arbor classify golf.model tomorrow.csv)";

int run(int argc, const char* const* argv) {
  const arbor::tools::terminal_guard guard(std::cout, arbor::tools::prints_to_terminal());
  CLI::App app("Decision trees from tables.", "arbor");
  app.formatter(std::make_shared<arbor::tools::help_format>());
  app.set_version_flag("--version", "arbor " ARBOR_VERSION);
  app.footer(program_help);
  std::vector<std::unique_ptr<arbor::tools::command>> commands;
  commands.push_back(std::make_unique<arbor::tools::rate_command>(app));
  commands.push_back(std::make_unique<arbor::tools::grow_command>(app));
  commands.push_back(std::make_unique<arbor::tools::validate_command>(app));
  commands.push_back(std::make_unique<arbor::tools::show_command>(app));
  commands.push_back(std::make_unique<arbor::tools::classify_command>(app));
  if (arbor::tools::parse_command_line(app, argc, argv)) {
    for (const auto& command : commands) {
      if (command->chosen()) command->run();
    }
  }
  std::cout.flush();
  if (!std::cout) {
    arbor::tools::complain(std::string("the results could not be written to standard output: ") +
                           std::strerror(errno));
    return failure;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    arbor::tools::complain_of_memory();
  } catch (const std::exception& error) {
    arbor::tools::complain(error.what());
  }
  return failure;
}
