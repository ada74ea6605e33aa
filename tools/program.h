// A program of several commands, and what differs between the programs that share them.
//
//   arbor::tools::program arbor("arbor", "Decision trees from tables.", "Examples:\n  arbor help");
//   arbor.add(std::make_unique<arbor::tools::show_command>(arbor.parser()));
//   return arbor.run(argc, argv);
#ifndef ARBOR_TOOLS_PROGRAM_H
#define ARBOR_TOOLS_PROGRAM_H

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/command_line.h"

namespace arbor::tools {

// The exit status after an error.
constexpr int failure = 2;

// The name of the program, which begins each message. Each program defines its own.
extern const std::string_view program_name;

// Ends the program at once, and all processes that it works with. The stack is not unwound and no
// memory is needed. Each program defines its own.
[[noreturn]] void end_program(int status) noexcept;

class program {
 public:
  // `description` is one line; `help` is shown below the commands, and is as for a command.
  program(const std::string& name, const char* description, const char* help);

  // To construct commands with.
  CLI::App& parser() { return app; }
  void add(std::unique_ptr<command> added) { commands.push_back(std::move(added)); }

  // Runs the command that the arguments name. Returns the exit status: a failure if the results
  // could not be written to standard output, which a message says. Throws what the command throws.
  int run(int argc, const char* const* argv);

 private:
  CLI::App app;
  std::vector<std::unique_ptr<command>> commands;
};

}  // namespace arbor::tools

#endif
