// The program from outside: runs the lines of program_cases.txt, which explains itself.

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <regex>

#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

struct outcome {
  int status;
  std::string printed;
};

// Runs a command in a shell; line breaks of what it prints become "⏎".
outcome run(const std::string& command) {
  FILE* pipe = popen(command.c_str(), "r");
  std::string printed;
  std::array<char, 4096> buffer{};
  while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe))
    printed.append(buffer.data(), count);
  return {WEXITSTATUS(pclose(pipe)), std::regex_replace(printed, std::regex("\n"), "⏎")};
}

TEST(Program, PrintsWhatItShould) {
  const temporary_file name("");
  const std::string folder = name.path() + ".d", program = ARBOR_PROGRAM;
  const std::string path = program.substr(0, program.rfind('/')) + ":" + std::getenv("PATH");
  const std::string start = "export PATH='" + path + "' data='" ARBOR_DATA "'; cd " + folder + "; ";
  ASSERT_EQ(run("mkdir " + folder).status, 0);
  std::ifstream cases(ARBOR_DATA "/../tests/program_cases.txt");
  for (std::string line; std::getline(cases, line);) {
    const std::size_t arrow = line.find(" => ");
    if (line.empty() || line[0] == '#') continue;
    const std::string expected = arrow == std::string::npos ? "" : line.substr(arrow + 4);
    const bool refused = expected.rfind("arbor: ", 0) == 0;
    const outcome result =
        run(start + "{ " + line.substr(0, arrow) + "\n} " + (refused ? "2>&1" : "2>err"));
    const bool as_expected = refused ? result.printed == expected + "⏎"
                                     : result.printed.find(expected) != std::string::npos;
    EXPECT_TRUE(as_expected && result.status == (refused ? 2 : 0))
        << line << "\nprints with status " << result.status << "\n"
        << result.printed;
  }
  EXPECT_EQ(run("rm -r " + folder).status, 0);
}

}  // namespace
}  // namespace arbor::tests
