// The program from outside: what it prints where, and the status it exits with.

#include <gmock/gmock.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <iterator>

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
  EXPECT_THAT(
      file.out,
      HasSubstr(
          "\noutlook      discrete    string        3     0.0%  0.246750    1.577406    0.156428"));
  const std::string results = file.out.substr(golf.size());
  EXPECT_EQ(run("rate -", "cat " + golf + " | ").out, "standard input" + results);
  EXPECT_EQ(run("rate - <" + golf).out, "standard input" + results);
}

TEST(Program, PrintsResultsOnStandardOutputAndAllElseOnStandardError) {
  const outcome csv = run("rate --format=csv --sort name " + golf);
  EXPECT_THAT(csv.out, StartsWith("attribute,kind,"));
  EXPECT_THAT(csv.err, HasSubstr("14 rows, 4 attributes"));
  EXPECT_EQ(
      run("rate --unknown 72 --unknown '[no]' --kind windy=discrete --format=csv --sort name " +
          golf)
          .status,
      0);
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
      {"rate " + golf + " --fromat csv",
       "there is no option \"--fromat\"; did you mean \"--format\"?"},
      {"rate " + golf + " --class", "--class takes one value, once"},
      {"rate " + golf + " more", "\"more\" is one argument too many"},
      {"rate " + golf + " --sort gian",
       "--sort: \"gian\" is none of ratio, gain, name; did you mean \"gain\"?"},
      {"rate " + golf + " --min-weight=-1",
       "--min-weight: \"-1\" is not a finite number from 0 up"},
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
  EXPECT_EQ(
      full.err,
      "arbor: the results could not be written to standard output: No space left on device\n");
}

// The line that tells errors, without the name that the cases have.
std::string errors_of(const std::string& report, const std::string& cases) {
  const std::size_t begin = report.find("errors on the ");
  std::string line = report.substr(begin, report.find('\n', begin) - begin);
  const std::size_t name = line.find(" " + cases + " cases");
  return name == std::string::npos ? "none" : line.erase(name, cases.size() + 1);
}

TEST(Program, ClassifiesTheTrainingTableWithTheErrorsThatGrowingTold) {
  const temporary_file model("");
  const temporary_file said("");
  for (const std::string table :
       {"birdstrikes", "golf", "housevotes84", "iris", "pima2", "soybean", "wine"}) {
    const std::string path = ARBOR_DATA "/" + table + ".csv";
    for (const std::string options : {"", " --no-pruning --min-weight 1"}) {
      const outcome grown = run("grow " + path + options + " --model " + model.path());
      const outcome classified =
          run("classify " + model.path() + " " + path + " --output " + said.path());
      EXPECT_EQ(grown.status + classified.status, 0) << classified.err;
      EXPECT_EQ(errors_of(grown.out, "training"), errors_of(classified.out, "classified"))
          << table << options;
      EXPECT_NE(errors_of(grown.out, "training"), "none");
    }
  }
}

TEST(Program, ShowsATreeAndClassifiesWithIt) {
  const temporary_file model("");
  const outcome grown =
      run("grow " + golf + " --holdout 0.3 --seed 2 --no-pruning --model " + model.path());
  EXPECT_THAT(grown.out, HasSubstr("errors on the 4 held-back cases: "));
  EXPECT_EQ(run("grow " + golf + " --model " + model.path()).status, 0);
  EXPECT_THAT(run("show " + model.path()).out,
              StartsWith("outlook = overcast: yes (4)\noutlook = rainy [2]\n"));
  EXPECT_THAT(run("show --format dot " + model.path()).out,
              HasSubstr("n0 -> n1 [label=\"overcast\"]"));
  EXPECT_THAT(run("show --format json " + model.path()).out, HasSubstr("\"threshold\": \"75\""));
  EXPECT_THAT(run("show " + model.path() + " --node 3 --rate " + golf).out,
              HasSubstr("5 rows, 4 attributes"));
  const temporary_file cases("note,windy,humidity,outlook\n\"a,b\",no,60,sunny\n\"\",?,,rainy\n");
  EXPECT_EQ(run("classify " + model.path() + " " + cases.path()).out,
            "note,windy,humidity,outlook,predicted,probability\n\"a,b\",no,60,sunny,yes,1\n\"\",?,,"
            "rainy,yes,0.6\n");
  const temporary_file lacking("windy,outlok,humidity\n");
  EXPECT_EQ(run("classify " + model.path() + " " + lacking.path()).err,
            "arbor: " + lacking.path() +
                ": there is no column \"outlook\" for an attribute of the model; did you mean "
                "\"outlok\"?\n");
  const temporary_file unfit("windy,outlook,humidity\nno,sunny,8O\n");
  const temporary_file untouched("as it was");
  const outcome refused =
      run("classify " + model.path() + " " + unfit.path() + " --output " + untouched.path());
  EXPECT_EQ(refused.err, "arbor: " + unfit.path() +
                             ":2: column \"humidity\": \"8O\" is not of the type integer that the "
                             "model has for the column\n");
  EXPECT_EQ(refused.status, 2);
  EXPECT_EQ(run("show " + golf).err, "arbor: " + golf + ": not a model of arbor grow\n");
  std::ifstream kept(untouched.path());
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(kept), {}), "as it was");
}

TEST(Program, LeavesTheOldModelOrTheNewOneWhenItIsKilled) {
  const temporary_file model("");
  const std::string grow =
      "grow " ARBOR_DATA "/birdstrikes.csv --no-pruning --model " + model.path();
  ASSERT_EQ(run(grow).status, 0);
  for (const std::string signal : {"KILL", "INT"}) {
    for (int moment = 0; moment < 15; ++moment) {
      run(grow, "timeout -s " + signal + " 0." + (moment < 10 ? "00" : "0") +
                    std::to_string(3 * moment) + " ");
      EXPECT_THAT(run("show --depth 0 " + model.path()).out, StartsWith("... 6"))
          << signal << " " << moment;
    }
    const std::string left =
        run("--version", "rm " + model.path() + ".?????? 2>/dev/null && echo left; ").out;
    EXPECT_TRUE(signal == "KILL" || left.find("left") == std::string::npos);
  }
}

TEST(Program, HelpsAndTellsItsVersion) {
  EXPECT_THAT(run("rate --help").out, HasSubstr("arbor rate golf.csv --class play --sort gain"));
  EXPECT_THAT(run("--version").out, StartsWith("arbor 0."));
}

}  // namespace
}  // namespace arbor::tests
