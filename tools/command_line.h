// The command line, read by CLI11, with this program's own words for what is wrong with it.
#ifndef ARBOR_TOOLS_COMMAND_LINE_H
#define ARBOR_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace arbor::tools {

class usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the arguments into the options of `app` and its commands. Returns false when help or the version was asked for
// and has been printed. Throws usage_error for an unknown command or option, naming the nearest one, for too many
// arguments and for an option without its value.
bool parse_command_line(CLI::App& app, int argc, const char* const* argv);

// Splits the values NAME=VALUE of a repeatable option; a name may hold a "=", a value may not. Throws usage_error.
std::map<std::string, std::string> name_values(const std::string& option, const std::vector<std::string>& given);

// Reads a finite number from 0 up. Throws usage_error.
float weight_value(const std::string& option, const std::string& given);

}  // namespace arbor::tools

#endif
