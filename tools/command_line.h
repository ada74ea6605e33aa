// The command line, read by CLI11, with this program's own words for what is wrong with it.
#ifndef ARBOR_TOOLS_COMMAND_LINE_H
#define ARBOR_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>

namespace arbor::tools {

class usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the arguments into the options of `app` and its commands. Returns false when help or the
// version was asked for and has been printed. Throws usage_error for an unknown command or option,
// naming the nearest one, for too many arguments and for an option without its value.
bool parse_command_line(CLI::App& app, int argc, const char* const* argv);

// What "arbor NAME ..." does.
class command {
 public:
  // Adds the command to `app`; `help` comes behind its options.
  command(CLI::App& app, const char* name, const char* description, const char* help);
  virtual ~command() = default;
  command(const command&) = delete;
  command& operator=(const command&) = delete;

  bool chosen() const { return parser.parsed(); }

  // Prints the results on standard output, all else on standard error. Throws usage_error for an
  // option's value that is none, and whatever else is wrong as an exception whose text is one line.
  virtual void run() = 0;

 protected:
  CLI::App& parser;
};

}  // namespace arbor::tools

#endif
