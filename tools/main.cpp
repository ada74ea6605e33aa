// The program arbor: arguments in, one call, report out.

#include <cerrno>
#include <cstring>
#include <iostream>
#include <new>

#include "tools/command_line.h"
#include "tools/rate_command.h"

namespace {

constexpr int failure = 2;

int run(int argc, const char* const* argv) {
  CLI::App app("Rates the attributes of tables for decision trees.", "arbor");
  app.set_version_flag("--version", "arbor " ARBOR_VERSION);
  app.footer("\"arbor COMMAND --help\" tells more of a command.\n\nExample:\n  arbor rate golf.csv --class play");
  const arbor::tools::rate_command rate(app);
  if (arbor::tools::parse_command_line(app, argc, argv) && rate.chosen()) rate.run();
  std::cout.flush();
  if (!std::cout) {
    std::cerr << "arbor: the results could not be written to standard output: " << std::strerror(errno) << '\n';
    return failure;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    std::cerr << "arbor: out of memory\n";
  } catch (const std::exception& error) {
    std::cerr << "arbor: " << error.what() << '\n';
  }
  return failure;
}
