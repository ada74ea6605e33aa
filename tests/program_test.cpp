// The program from outside: runs the lines of program_cases.txt, which explains itself.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdio>

#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

// What a command of the shell prints, with "⏎" for a line break, behind its status.
std::string run(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string printed;
  for (int c = fgetc(pipe); c != EOF; c = fgetc(pipe))
    printed += c == '\n' ? "⏎" : std::string(1, static_cast<char>(c));
  return std::to_string(WEXITSTATUS(pclose(pipe))) + ": " + printed;
}

TEST(Program, PrintsWhatItShould) {
  const temporary_file name("");
  const std::string folder = name.path() + ".d", program = ARBOR_PROGRAM;
  const std::string start = "PATH=" + program.substr(0, program.rfind('/')) +
                            ":$PATH; export data='" ARBOR_DATA "'; cd " + folder + "; ";
  ASSERT_EQ(run("mkdir " + folder), "0: ");
  std::ifstream cases(ARBOR_DATA "/../tests/program_cases.txt");
  for (std::string line; std::getline(cases, line);) {
    if (line.empty() || line[0] == '#') continue;
    const std::size_t end = std::min(line.find(" => "), line.size());
    const std::string command = line.substr(0, end);
    const std::string expected = end < line.size() ? line.substr(end + 4) : "";
    const bool refused = expected.rfind("arbor: ", 0) == 0;
    const std::string result = run(start + "{ " + command + (refused ? "\n} 2>&1" : "\n} 2>err"));
    EXPECT_TRUE(refused ? result == "2: " + expected + "⏎"
                        : result[0] == '0' && result.find(expected) != std::string::npos)
        << line << "\nprints with status " << result;
  }
  EXPECT_EQ(run("rm -r " + folder), "0: ");
}

}  // namespace
}  // namespace arbor::tests
