// The program from outside: what it prints where, and the status it exits with.

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>

#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

struct outcome {
  int status;
  std::string out;
  std::string err;
};

// Runs "arbor <arguments>" in a shell.
outcome run(const std::string& arguments, const std::string& before = "") {
  const temporary_file errors("");
  const std::string command = before + ARBOR_PROGRAM " " + arguments + " 2>" + errors.path();
  outcome result{0, "", ""};
  FILE* pipe = popen(command.c_str(), "r");
  std::array<char, 4096> buffer{};
  while (const std::size_t count = fread(buffer.data(), 1, buffer.size(), pipe))
    result.out.append(buffer.data(), count);
  result.status = WEXITSTATUS(pclose(pipe));
  std::ifstream in(errors.path());
  result.err.assign(std::istreambuf_iterator<char>(in), {});
  return result;
}

const std::string golf = ARBOR_DATA "/golf.csv";

TEST(Program, RatesTheSameFromAFileAPipeAndARedirection) {
  const outcome file = run("rate " + golf);
  EXPECT_EQ(file.status, 0);
  EXPECT_EQ(file.err, "");
  EXPECT_THAT(file.out,
              HasSubstr("\noutlook      discrete    string        3     0.0%  0.246750    1.577406    0.156428"));
  const std::string results = file.out.substr(golf.size());
  EXPECT_EQ(run("rate -", "cat " + golf + " | ").out, "standard input" + results);
  EXPECT_EQ(run("rate - <" + golf).out, "standard input" + results);
}

TEST(Program, PrintsResultsOnStandardOutputAndAllElseOnStandardError) {
  const outcome csv = run("rate --format=csv --sort name " + golf);
  EXPECT_THAT(csv.out, StartsWith("attribute,kind,"));
  EXPECT_THAT(csv.err, HasSubstr("14 rows, 4 attributes"));
  EXPECT_EQ(run("rate --unknown 72 --unknown '[no]' --kind windy=discrete --format=csv --sort name " + golf).status, 0);
  const temporary_file odd("a,c\n1,x\nNA,y\n2,y\n");
  const outcome remarked = run("rate --format json " + odd.path());
  EXPECT_THAT(remarked.out, StartsWith("{"));
  EXPECT_THAT(remarked.err, StartsWith("arbor: " + odd.path() + ": column \"a\" is of texts"));
}

TEST(Program, SaysInOneLineWhatIsWrongAndExitsWithTwo) {
  const std::vector<std::pair<std::string, std::string>> wrong{
      {"", "no command; \"arbor --help\" tells which there are"},
      {"raet x.csv", "there is no command \"raet\"; did you mean \"rate\"?"},
      {"rate", "no table; name a CSV file, or - for standard input"},
      {"rate " + golf + " --fromat csv", "there is no option \"--fromat\"; did you mean \"--format\"?"},
      {"rate " + golf + " --class", "--class takes one value, once"},
      {"rate " + golf + " more", "\"more\" is one argument too many"},
      {"rate " + golf + " --sort gian", "--sort: \"gian\" is none of ratio, gain, name; did you mean \"gain\"?"},
      {"rate " + golf + " --min-weight=-1", "--min-weight: \"-1\" is not a finite number from 0 up"},
      {"rate " + golf + " --type windy", "--type: \"windy\" is not of the form NAME=TYPE"},
      {"rate /nowhere/x.csv", "/nowhere/x.csv: cannot be opened: No such file or directory"},
      {"rate /tmp", "/tmp: cannot be read: Is a directory"}};
  for (const auto& [arguments, message] : wrong) {
    const outcome result = run(arguments);
    EXPECT_EQ(result.status, 2) << arguments;
    EXPECT_EQ(result.out, "") << arguments;
    EXPECT_EQ(result.err, "arbor: " + message + "\n") << arguments;
  }
  const outcome full = run("rate " + golf + " >/dev/full");
  EXPECT_EQ(full.status, 2);
  EXPECT_EQ(full.err, "arbor: the results could not be written to standard output: No space left on device\n");
}

TEST(Program, HelpsAndTellsItsVersion) {
  EXPECT_THAT(run("rate --help").out, HasSubstr("arbor rate golf.csv --class play --sort gain"));
  EXPECT_THAT(run("--version").out, StartsWith("arbor 0."));
}

}  // namespace
}  // namespace arbor::tests
