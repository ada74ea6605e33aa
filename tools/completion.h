// Completion of a program's command lines in bash, from the definitions that --help shows.
//
//   out << arbor::tools::bash_completion(program.parser());
#ifndef ARBOR_TOOLS_COMPLETION_H
#define ARBOR_TOOLS_COMPLETION_H

#include <CLI/CLI.hpp>
#include <string>

namespace arbor::tools {

// A script for bash, which needs nothing else. It completes commands, options and the values that
// are offered (offered_values.h), and names of files where the kind of value is a FILE or a TABLE.
std::string bash_completion(CLI::App& program);

}  // namespace arbor::tools

#endif
