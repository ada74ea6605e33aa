#include "arbor/table/table_loader.h"

#include <gmock/gmock.h>

#include <array>
#include <cctype>
#include <cmath>
#include <random>

#include "arbor/csv/table_error.h"
#include "arbor/utils/memory_device.h"
#include "arbor/utils/number_text.h"
#include "tests/support/columns.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using testing::ElementsAre;
using tree::load_options;
using tree::table;

table load(const std::string& contents, const load_options& options = {}) {
  const temporary_file csv(contents);
  return tree::load_table(csv.path(), options);
}

// What loading is refused with, without the path.
std::string refusal(const std::string& contents, const load_options& options = {}) {
  const temporary_file csv(contents);
  try {
    tree::load_table(csv.path(), options);
  } catch (const tree::table_error& error) {
    const std::string message = error.what();
    return message.rfind(csv.path(), 0) == 0 ? message.substr(csv.path().size()) : message;
  }
  return "accepted";
}

// A column as "type kind: value value ...".
std::string described(const impls::column& column) {
  std::string text = column.get_o_set()->get_datatype() + " " + column.get_type() + ":";
  for (unsigned int row = 0; row < column.size(); ++row) {
    text += " " + tree::value_text(column, column.get_row_index(row));
  }
  return text;
}

std::vector<std::string> columns_of(const table& loaded) {
  std::vector<std::string> columns;
  for (const auto& column : loaded.columns) columns.push_back(described(*column));
  return columns;
}

load_options with(void (*change)(load_options&)) {
  load_options options;
  change(options);
  return options;
}

TEST(TableLoader, FindsTheNarrowestTypeOfEachColumn) {
  EXPECT_THAT(columns_of(load("i,f,s,late,none,c\n"
                              "1,1.5,x,1,?,a\n"
                              "-2,2,1,2.5,,b\n"
                              ",?,,1,?,a\n")),
              ElementsAre("integer continuous: 1 -2 ?", "float continuous: 1.5 2 ?",
                          "string discrete: x 1 ?", "float continuous: 1 2.5 1",
                          "null ignore:", "string class: a b a"));
  // A sign alone and a not-a-number are texts; an integer out of range is a float.
  EXPECT_THAT(columns_of(load("a,b,d,c\n+,nan,2147483648,1\n1,1,1,2\n")),
              ElementsAre("string discrete: + 1", "string discrete: nan 1",
                          "float continuous: 2147483648 1", "integer class: 1 2"));
  // A narrower type that turns out wrong loses nothing of the texts.
  EXPECT_THAT(columns_of(load("a,c\n007,x\n1.50,x\nend,x\n")),
              ElementsAre("string discrete: 007 1.50 end", "string class: x x x"));
}

TEST(TableLoader, TakesTypesKindsClassAndUnknownTextsAsTold) {
  const load_options options = with([](load_options& o) {
    o.class_name = "play";
    o.types = {{"code", "string"}};
    o.kinds = {{"size", "discrete"}, {"note", "ignore"}};
    o.unknown_texts = {"NA", "", "\"\""};
  });
  const table loaded = load("code,play,size,note\n01,y,3,?\nNA,n,,\"\"\n1,y,4,NA\n", options);
  EXPECT_THAT(columns_of(loaded), ElementsAre("string discrete: 01 NA 1", "string class: y n y",
                                              "integer discrete: 3 ? 4", "string ignore: ? NA NA"));
  EXPECT_EQ(loaded.class_index, 1U);
}

TEST(TableLoader, KeepsTheEmptyTextInQuotesApartFromTheEmptyCell) {
  EXPECT_THAT(columns_of(load("a,c\n\"\",x\n,x\nb,x\n")),
              ElementsAre("string discrete:  ? b", "string class: x x x"));
}

TEST(TableLoader, TakesNoKnownTextForTheUnknownOne) {
  const load_options options = with([](load_options& o) { o.unknown_texts = {""}; });
  const table loaded = load("a,c\n\"\",x\n,x\n?,x\n", options);
  EXPECT_EQ(loaded.columns[0]->get_o_set()->size_of_known(), 2U);
  EXPECT_EQ(tree::unknown_cells(*loaded.columns[0], loaded.cases), 1U);
}

TEST(TableLoader, LeavesOutRowsOfWeightZeroWholly) {
  const load_options options = with([](load_options& o) { o.weights_name = "w"; });
  const table loaded = load("a,w,c\nodd,0,?\n1,0.5,x\n2,2,y\n", options);
  EXPECT_THAT(columns_of(loaded),
              ElementsAre("integer continuous: 1 2", "float weights: 0.5 2", "string class: x y"));
  ASSERT_EQ(loaded.cases.size(), 2U);
  EXPECT_EQ(loaded.cases[1].first, 1U);
  EXPECT_EQ(loaded.cases[0].second, 0.5F);
  EXPECT_EQ(loaded.total_weight, 2.5F);
  const std::string no_weight =
      " is no weight; a weight is a finite number from 0 up, and 0 leaves the row out";
  for (const std::string bad : {"-1", "x", "?", "1e39", "inf", "nan"}) {
    EXPECT_EQ(refusal("a,w,c\n1,1,x\n1," + bad + ",x\n", options),
              ":3: column \"w\": \"" + bad + "\"" + no_weight);
  }
  EXPECT_EQ(refusal("a,w,c\n1,0,x\n", options), ": every row has the weight 0");
  EXPECT_EQ(refusal("w,a,c\n3e38,1,x\n3e38,2,y\n", options),
            ": the weights add up to more than a float can hold");
}

TEST(TableLoader, LooksUpTextsOfAnyBytes) {
  std::string csv = "a,c\n";
  std::string expected = "string discrete:";
  for (int byte = 1; byte < 256; ++byte) {
    for (const std::string& text :
         {std::string(1, static_cast<char>(byte)), "a" + std::string(2, static_cast<char>(byte))}) {
      if (text.find_first_of(",\"\r\n?") != std::string::npos) continue;
      csv += text + ",x\n";
      expected += " " + text;
    }
  }
  EXPECT_EQ(described(*load(csv).columns[0]), expected);
}

TEST(TableLoader, RemarksOnOddTextsAndOnNumbersThatMerge) {
  EXPECT_THAT(load("a,c\nNA,x\n1,x\n2.5,x\n7,y\nNA,x\n").remarks,
              ElementsAre("column \"a\" is of texts, but all its values are numbers except \"NA\" "
                          "in 2 cells; if that means "
                          "unknown, say --unknown '?' --unknown '' --unknown 'NA'"));
  EXPECT_THAT(load("a,c\n1,x\nred,x\ngreen,x\nblue,x\nwhite,x\n2,y\n").remarks, ElementsAre());
  // 16777216 and 16777217 are one float, and so are all three numbers that are too small for one;
  // 0.1 is 0.10.
  EXPECT_THAT(
      load(
          "a,b,c\n16777216,1e-60,x\n16777217,2e-60,x\n16777217.0,1e-60,x\n0.1,-1e-60,x\n0.10,3,y\n")
          .remarks,
      ElementsAre("column \"a\" loses 1 distinct number: as float it is equal to another one",
                  "column \"b\" loses 2 distinct numbers: as float they are equal to others"));
  EXPECT_THAT(
      load("a,b,c\n?,1,x\n").remarks,
      ElementsAre("column \"a\" has no known value and is ignored",
                  "column \"c\" is the class and has a single value: nothing can be gained"));
  EXPECT_THAT(load("a,c\nit's,x\n1,x\n2,y\n\"\",x\n7,x\n").remarks,
              ElementsAre("column \"a\" is of texts, but all its values are numbers except "
                          "\"it's\" in 1 cell, \"\" in 1 "
                          "cell; if that means unknown, say --unknown '?' --unknown '' --unknown "
                          "'it'\\''s' --unknown '\"\"'"));
  EXPECT_THAT(
      load("a,c\n12345678901234567890,x\n12345678901234567891,y\n1.2345678901234567891e19,x\n")
          .remarks,
      ElementsAre("column \"a\" loses 1 distinct number: as float it is equal to another one"));
}

// The record of a column of these texts, "?" being unknown, filled text by text.
std::vector<unsigned char> record_of(const std::vector<std::string>& cells) {
  bool integers = true;
  bool numbers = true;
  for (const std::string& cell : cells) {
    double value = 0;
    const bool number =
        cell == "?" || (strata::util::read_number(cell.c_str(), value) && !std::isnan(value));
    numbers = numbers && number;
    integers = integers && number &&
               (cell == "?" || (std::isdigit(cell.back()) != 0 && std::fabs(value) < 2147483648));
    integers = integers && cell.find_first_of(".ex") == std::string::npos;
  }
  const std::string kind = numbers ? "continuous" : "discrete";
  const auto filled = make_column(kind, integers ? "integer" : numbers ? "float" : "string", cells);
  strata::inpout::memory_device device;
  strata::inpout::obinstream out(device);
  out << filled.get();
  return device.bytes();
}

TEST(TableLoader, MakesTheColumnThatTheTextsMakeOneByOne) {
  const std::vector<std::string> odd = {
      " 7",      "+5",          "007",        "1e3",       "0x10",      "-0",
      "-0.0",    "0.0",         "1.0",        ".5",        "5.",        "16777217",
      "1e-60",   "-2147483648", "2147483648", "nan",       "inf",       "1e-05",
      "0.00001", "+",           "--1",        "123456789", "123456789", "1234567890123456789.5",
      "1 ",      "/1",          "1:",         "abcdefgh",  "abcdefghi"};
  std::mt19937 random(5);
  const auto draw = [&](int end) {
    return static_cast<int>(random() % static_cast<unsigned int>(end));
  };
  for (int round = 0; round < 200; ++round) {
    // Regular cells of one sort, with unknown and odd ones from some row on, if at all.
    const int rows = round < 4 ? 70000 : 1 + draw(600);
    const int sort = draw(6);
    const int range = std::array{3, 300, 70000, 2147483647}[static_cast<std::size_t>(draw(4))];
    const int first_odd = draw(3) == 0 ? rows : draw(rows);
    std::vector<std::string> cells;
    for (int row = 0; row < rows; ++row) {
      std::string cell = std::to_string(draw(range) - (sort == 1 ? range / 2 : 0));
      if (sort == 2) cell += "." + std::to_string(draw(100));
      if (sort == 3) cell = "text " + cell;
      if (sort == 4) cell = "0." + std::to_string(draw(range)) + cell;
      if (draw(40) == 0) cell = "?";
      if (row >= first_odd && draw(50) == 0)
        cell = odd[static_cast<std::size_t>(draw(static_cast<int>(odd.size())))];
      cells.push_back(cell);
    }
    std::string csv = "x,c\n";
    for (const std::string& cell : cells) csv += cell + ",x\n";
    const table loaded = load(csv);
    strata::inpout::memory_device device;
    strata::inpout::obinstream out(device);
    const auto& column = loaded.columns[0];
    if (column->get_o_set()->is_dt_null()) continue;
    out << column.get();
    EXPECT_EQ(device.bytes(), record_of(cells)) << "round " << round;
  }
}

TEST(TableLoader, RefusesWhatIsNoTableNamingThePlace) {
  const std::string counts = ", but the first row names 2 columns";
  EXPECT_EQ(refusal(""), ": empty; a table begins with a row of column names");
  EXPECT_EQ(refusal("a,c\n"), ": no rows below the column names");
  EXPECT_EQ(refusal("a;c\nx\n"),
            ":1: only one column, \"a;c\"; a table has several, between commas");
  EXPECT_EQ(refusal("a,c\n\"1\n2\",x\n1\n"), ":4: 1 cell" + counts);
  EXPECT_EQ(refusal("a,c\r\n1,2\r\n3,?\r\n"),
            ":3: column \"c\": \"?\" is the unknown value; the class of every row must be known, "
            "or the row be left out");
  EXPECT_EQ(refusal("a,c\n1,2,3\n"),
            ":2: 3 cells" + counts + "; a cell with a comma in it needs quotes");
  EXPECT_EQ(refusal("a,,c\n"), ":1: column 2 has no name");
  EXPECT_EQ(refusal("a,b,a\n"), ":1: two columns have the name \"a\"");
  EXPECT_EQ(refusal("\"a\n\",c\n1,x\n2,?\n"),
            ":4: column \"c\": \"?\" is the unknown value; the class of every row must be known, "
            "or the row be left out");
}

TEST(TableLoader, RefusesOptionsThatDoNotGoWithTheTable) {
  const std::string csv = "size,weight,play\n1,1.5,x\n";
  EXPECT_EQ(refusal(csv, with([](load_options& o) { o.class_name = "paly"; })),
            ": there is no column \"paly\" for --class; did you mean \"play\"?");
  EXPECT_EQ(refusal(csv, with([](load_options& o) { o.types["zzz"] = "float"; })),
            ": there is no column \"zzz\" for --type");
  EXPECT_EQ(refusal(csv, with([](load_options& o) { o.types["size"] = "flaot"; })),
            "--type: column \"size\": \"flaot\" is none of integer, uinteger, float, double, "
            "string; did you mean "
            "\"float\"?");
  EXPECT_EQ(refusal(csv, with([](load_options& o) { o.kinds["play"] = "ignore"; })),
            ": column \"play\" is the class, which is its kind; --kind is for attributes");
  EXPECT_EQ(refusal(csv, with([](load_options& o) { o.class_name = o.weights_name = "play"; })),
            ": \"play\" cannot be both the class and the weights");
  EXPECT_EQ(
      refusal(csv, with([](load_options& o) { o.types["weight"] = "integer"; })),
      ":2: column \"weight\": \"1.5\" is not of the type integer that was chosen for the column");
  EXPECT_EQ(refusal("a,c\nnan,x\n", with([](load_options& o) { o.types["a"] = "float"; })),
            ":2: column \"a\": \"nan\" is not of the type float that was chosen for the column");
  EXPECT_EQ(refusal(csv, with([](load_options& o) { o.types["weight"] = "double"; })),
            ": column \"weight\": Continuous column 'weight' requires a numeric data type; the "
            "numeric data types are "
            "integer, "
            "uinteger and float");
}

}  // namespace
}  // namespace arbor::tests
