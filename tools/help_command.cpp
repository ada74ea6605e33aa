#include "tools/help_command.h"

namespace arbor::tools {

namespace {

constexpr const char* help_help = R"(Without COMMAND, describes the program.)";

}  // namespace

help_command::help_command(CLI::App& app)
    : command(app, "help", "Describe a command, as COMMAND --help does", help_help),
      described(app) {
  parser.add_option("COMMAND", name, "The command to describe")->type_name("");
}

void help_command::run() {
  print_help(given("COMMAND") ? command_named(described, name) : described);
}

}  // namespace arbor::tools
