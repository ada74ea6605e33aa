// The option --threads.
#ifndef ARBOR_TOOLS_THREAD_OPTION_H
#define ARBOR_TOOLS_THREAD_OPTION_H

#include <CLI/CLI.hpp>
#include <string>

namespace arbor::tools {

// Adds the option to a command; it sets `given`.
void add_threads(CLI::App& command, std::string& given);

// The number of threads that was given; 0, for one on each core, if none was. Throws usage_error
// for what is no such number.
unsigned int thread_count(const std::string& given);

}  // namespace arbor::tools

#endif
