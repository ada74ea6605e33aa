// The values of an option that takes only some, or that are known beforehand: a shell completes
// them.
//
//   offer(parser.add_option("--format", format, "text or json"), {"text", "json"});
//   check_offered(parser, "--format");
#ifndef ARBOR_TOOLS_OFFERED_VALUES_H
#define ARBOR_TOOLS_OFFERED_VALUES_H

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace arbor::tools {

// Remembers the values with the option, which it returns. They are words without blanks. An option
// whose value has the form NAME=VALUE takes them after the "=".
CLI::Option* offer(CLI::Option* option, const std::vector<std::string>& values);

// These values; none if no values have been offered.
std::vector<std::string> offered(CLI::Option& option);

// Throws table_error, naming the option, if it is on the command line with a value that has not
// been offered.
void check_offered(CLI::App& command, const std::string& option);

}  // namespace arbor::tools

#endif
