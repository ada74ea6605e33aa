// The command line: parsed by CLI11, with this program's own messages for what is wrong with it.
#ifndef ARBOR_TOOLS_COMMAND_LINE_H
#define ARBOR_TOOLS_COMMAND_LINE_H

#include <CLI/CLI.hpp>
#include <stdexcept>
#include <string>

namespace arbor::tools {

// A mistake in the arguments. what() is one line for the person who wrote them.
class usage_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Throws usage_error with the message if `wrong` is true.
void refuse_if(bool wrong, const std::string& message);

// The last words of every help.
constexpr const char* exit_status_help =
    "Exit status: 0, or 2 after an error, which standard error describes in one line.";

// "arbor" or "arbor grow"
std::string full_name(const CLI::App& app);

// Throws usage_error if `app` has no such command, naming the nearest one.
const CLI::App& command_named(const CLI::App& app, const std::string& name);

// Prints the help of the program or of a command on standard output.
void print_help(const CLI::App& app);

// Parses the arguments into the options of `app` and its commands. Returns false when help or the
// version was asked for; it has been printed on standard output then. Throws usage_error for an
// unknown command or option, naming the nearest one, for too many arguments, and for an option
// without its value.
bool parse_command_line(CLI::App& app, int argc, const char* const* argv);

// What the program does for "NAME ...".
class command {
 public:
  // Adds a command to `app`, which must outlive it. `description` is one line; `help` is shown
  // below the options. Neither may be wider than 80 columns. The manual page has the same texts: a
  // paragraph of `help` that begins with "Title: " becomes a section, and lines that are indented
  // stay as they are.
  command(CLI::App& app, const char* name, const char* description, const char* help);
  virtual ~command() = default;
  command(const command&) = delete;
  command& operator=(const command&) = delete;

  // Whether the command line names this command.
  bool chosen() const { return parser.parsed(); }

  // Prints results on standard output, and all else on standard error. Throws usage_error for an
  // unusable value of an option and other exceptions for other failures; their text is one line.
  virtual void run() = 0;

 protected:
  // Whether an option is on the command line: given("--depth").
  bool given(const std::string& option) const { return parser.count(option) > 0; }

  CLI::App& parser;
};

}  // namespace arbor::tools

#endif
