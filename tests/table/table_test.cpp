#include <gmock/gmock.h>

#include <array>
#include <random>
#include <set>

#include "arbor/table/value_text.h"
#include "arbor/utils/memory_device.h"
#include "arbor/utils/number_text.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using testing::ElementsAre;
using tree::table;

// A column as "type kind: value value ...", each of which the column finds again.
std::string described(const column& source) {
  std::string text = source.get_o_set()->get_datatype() + " " + source.get_type() + ":";
  for (unsigned int row = 0; row < source.size(); ++row) {
    const unsigned int code = source.get_row_index(row);
    const std::string value = tree::value_text(source, code);
    unsigned int found = 0;
    EXPECT_TRUE(tree::code_of_text(source, value.c_str(), found) && found == code) << value;
    text += " " + value;
  }
  return text;
}

texts columns_of(const table& loaded) {
  texts columns;
  for (const auto& column : loaded.columns) columns.push_back(described(*column));
  return columns;
}

// The column of a table that has these cells below one another.
std::string column_of(const texts& cells) {
  std::string csv = "a,c\n";
  for (const std::string& cell : cells) csv += cell + ",x\n";
  return described(*load_csv(csv).columns[0]);
}

void expect_refusal(const std::string& csv, const std::string& options,
                    const std::string& message) {
  EXPECT_EQ(refusal(csv, [&](const auto& path) { tree::load_table(path, options_of(options)); }),
            message);
}

TEST(Table, HoldsTheNarrowestTypeOfEachColumn) {
  EXPECT_THAT(columns_of(load_csv("i,f,s,late,none,c\n1,1.5,x,1,?,a\n-2,2,1,2.5,,b\n,?,,1,?,a\n")),
              ElementsAre("integer continuous: 1 -2 ?", "float continuous: 1.5 2 ?",
                          "string discrete: x 1 ?", "float continuous: 1 2.5 1",
                          "null ignore:", "string class: a b a"));
  // A sign alone and a not-a-number are texts; an integer out of range is a float.
  EXPECT_EQ(column_of({"+", "1"}), "string discrete: + 1");
  EXPECT_EQ(column_of({"nan", "1"}), "string discrete: nan 1");
  EXPECT_EQ(column_of({"2147483648", "1"}), "float continuous: 2147483648 1");
  // What looks like a narrower type at first loses nothing of the texts.
  EXPECT_EQ(column_of({"007", "1.50", "end"}), "string discrete: 007 1.50 end");
  // The empty text in quotes is not the empty cell.
  EXPECT_EQ(column_of({"\"\"", "", "b"}), "string discrete:  ? b");
  // Floats of which thirty decimals show too much or nothing.
  EXPECT_EQ(column_of({"0.1", "1e-45", "-3e-45", "inf", "3.4028235e38", "-1e99"}),
            "float continuous: 0.1 1e-45 -3e-45 inf 3.4028235e+38 -inf");
}

TEST(Table, KeepsTheZeroThatComesFirst) {
  EXPECT_EQ(column_of({"1.5", "0", "-0.0", "0"}), "float continuous: 1.5 0 0 0");
  EXPECT_EQ(column_of({"1.5", "-0.0", "0", "-1"}), "float continuous: 1.5 -0 -0 -1");
  EXPECT_EQ(column_of({"+1", "-0.0", "0"}), "float continuous: 1 -0 -0");
  EXPECT_EQ(column_of({"-0", "0"}), "integer continuous: 0 0");
}

TEST(Table, IsReadByTheOptions) {
  const std::string chosen =
      "class play type code string kind size discrete kind note ignore unknown NA unknown '' "
      "unknown \"\"";
  const table typed =
      load_csv("code,play,size,note\n01,y,3,?\nNA,n,,\"\"\n1,y,4,NA\n", options_of(chosen));
  EXPECT_THAT(columns_of(typed), ElementsAre("string discrete: 01 NA 1", "string class: y n y",
                                             "integer discrete: 3 ? 4", "string ignore: ? NA NA"));
  EXPECT_EQ(typed.class_index, 1U);
  // Where "?" may be a known text, the unknown value has one that no cell becomes.
  const table empty = load_csv("a,b,c\n\"\",1,x\n,2,x\n?,,x\n\x7F?,,x\n", options_of("unknown ''"));
  EXPECT_EQ(empty.columns[0]->get_o_set()->size_of_known(), 3U);
  EXPECT_EQ(tree::unknown_cells(*empty.columns[1], empty.cases), 2U);
  const auto range = tree::occurring_range(*empty.columns[1], {{1, 1}, {3, 1}});
  EXPECT_EQ(range.first * 10 + range.second, 23U);
  EXPECT_EQ(tree::occurring_range(*empty.columns[1], {{3, 1}}).second, 0U);
}

TEST(Table, LeavesOutRowsOfWeightZeroWholly) {
  tree::load_options options = options_of("weights w");
  std::size_t rows_read = 0;
  options.progress = [&](std::size_t rows) { EXPECT_EQ(rows, ++rows_read); };
  const table loaded = load_csv("a,c,w\nodd,?,0\n1,x,0.5\n2,y,2\n", options);
  EXPECT_EQ(rows_read, 3U);
  EXPECT_THAT(columns_of(loaded),
              ElementsAre("integer continuous: 1 2", "string class: x y", "float weights: 0.5 2"));
  ASSERT_EQ(loaded.cases.size(), 2U);
  EXPECT_EQ(loaded.cases[1].first, 1U);
  EXPECT_EQ(loaded.total_weight, 2.5F);
  EXPECT_THAT(tree::class_weights(loaded.class_column(), loaded.cases), ElementsAre(0.5F, 2.0F));
  for (const std::string bad : {"-1", "x", "?", "1e39", "inf", "nan"}) {
    expect_refusal("a,w,c\n1,1,x\n1," + bad + ",x\n", "weights w",
                   ":3: column \"w\": \"" + bad +
                       "\" is no weight; a weight is a finite number from 0 up, and 0 leaves the "
                       "row out");
  }
  expect_refusal("a,w,c\n1,0,x\n", "weights w", ": every row has the weight 0");
  expect_refusal("w,a,c\n3e38,1,x\n3e38,2,y\n", "weights w",
                 ": the weights add up to more than a float can hold");
}

TEST(Table, HasRemarksOnFewTextsAmongNumbersAndOnNumbersThatMerge) {
  const std::string but = "column \"a\" is of texts, but all its values are numbers except ";
  const std::string one =
      "column \"a\" loses 1 distinct number: as float it is equal to another one";
  const std::string two = "loses 2 distinct numbers: as float they are equal to others";
  const std::vector<std::pair<std::string, texts>> tables{
      {"a,c\nNA,x\n1,x\n2.5,x\n7,y\nNA,x\n", {but + "\"NA\" in 2 cells ?  NA"}},
      {"a,c\nit's,x\n1,x\n2e0,y\n\"\",x\n7,x\n",
       {but + "\"it's\" in 1 cell, \"\" in 1 cell ?  it's \"\""}},
      {"a,c\nN\tA,x\n1,x\n2,y\n", {but + "\"N\\tA\" in 1 cell"}},
      {"a,c\nNA,x\n1,y\n", {}},
      {"a,c\n1,x\n2,x\n3,x\n4,y\nr,x\ns,x\nt,x\n",
       {but + "\"r\" in 1 cell, \"s\" in 1 cell, \"t\" in 1 cell ?  r s t"}},
      {"a,c\n1,x\n2,x\n3,x\n4,x\n5,y\nr,x\ns,x\nt,x\nu,x\n", {}},
      {"a,c\n1,1\n2,2\n3,x\n", {}},
      {"a,b,c\n?,1,x\n",
       {"column \"a\" has no known value and is ignored",
        "column \"c\" is the class and has a single value: nothing can be gained"}},
      // 16777216 and 16777217 are one float, and so are numbers too small for one; 0.1 is 0.10.
      {"a,b,c\n16777216,1e-60,x\n16777217,2e-60,x\n16777217.0,1e-60,x\n0.1,-1e-60,x\n0.10,3,y\n",
       {one, "column \"b\" " + two}},
      {"a,c\n12345678901234567890,x\n12345678901234567891,y\n1.2345678901234567891e19,x\n", {one}},
      {"a,c\n1.5,x\n1e39,x\ninf,y\n-1e39,y\n-inf,y\n", {"column \"a\" " + two}},
      {"a,c\n0x1000001,x\n16777216,y\n16777217,x\n", {one}}};
  for (const auto& [csv, expected] : tables) {
    texts remarks;
    for (const tree::table_remark& remark : load_csv(csv).remarks) {
      remarks.push_back(remark.text);
      for (const std::string& text : remark.to_declare) remarks.back() += " " + text;
    }
    EXPECT_EQ(remarks, expected) << csv;
  }
}

// Whether a cell is of a data type; of numbers, what equals no number is not.
bool fits(const std::string& type, const std::string& cell) {
  if (type != "string" && (cell == "+" || cell == "nan")) return false;
  return message_of([&] { make_domain(type, {cell}); }).empty();
}

std::vector<unsigned char> record_of(column* written) {
  strata::inpout::memory_device device;
  strata::inpout::obinstream(device) << written;
  return device.bytes();
}

TEST(Table, HasTheColumnThatTheTextsMakeOneByOne) {
  const texts odd = listed(
      " 7,+5,007,1e3,0x10,0.0,1.0,.5,5.,16777217,1e-60,-2147483648,2147483648,nan,inf,1e-05,+,"
      "0.00001,--1,123456789,123456780,4294967296,1 ,/1,1:,abcdefgh,abcdefghi,-3.25,"
      "1234567890123456789.5");
  const texts types = listed("integer,uinteger,float,double,string,,,");
  std::mt19937 random(5);
  const auto draw = [&](std::size_t end) { return random() % end; };
  for (int round = 0; round < 250; ++round) {
    // Regular cells of one sort, with unknown and odd ones from some row on, if at all.
    const std::string chosen = types[draw(types.size())];
    const std::size_t rows = round < 3 ? 70000 : 1 + draw(600);
    const std::size_t sort = draw(6);
    const std::size_t range = std::array{3, 300, 70000, 2147483647}[draw(4)];
    const std::size_t first_odd = draw(3) == 0 ? rows : draw(rows);
    texts cells;
    std::set<std::string> distinct;
    std::string csv = "x,c\n";
    while (cells.size() < rows) {
      std::string cell = std::to_string(draw(range));
      if (sort == 1 && cell != "0") cell = "-" + cell;
      if (sort == 2) cell += "." + std::to_string(draw(100));
      if (sort == 3) cell = "text " + cell;
      if (sort == 4) cell = "0." + std::to_string(draw(range)) + cell;
      if (cells.size() >= first_odd && draw(50) == 0) cell = odd[draw(odd.size())];
      if (draw(40) == 0 || (!chosen.empty() && !fits(chosen, cell))) cell = "?";
      csv += cell + ",x\n";
      cells.push_back(cell);
      if (cell != "?") distinct.insert(cell);
    }
    if (distinct.empty()) continue;
    std::string type = chosen;
    for (const std::string narrower : {"string", "float", "integer"}) {
      const auto fits_it = [&](const std::string& cell) { return fits(narrower, cell); };
      if (chosen.empty() && std::all_of(distinct.begin(), distinct.end(), fits_it)) type = narrower;
    }
    const std::string options = "kind x discrete" + (chosen.empty() ? "" : " type x " + chosen);
    const table loaded = load_csv(csv, options_of(options));
    EXPECT_EQ(record_of(loaded.columns[0].get()),
              record_of(make_column("discrete", type, cells).get()))
        << "round " << round << ", " << type;
  }
}

TEST(Table, RefusesWhatIsNoTableNamingThePlace) {
  const std::string counts = ", but the first row names 2 columns";
  const std::string unknown =
      ": column \"c\": \"?\" is the unknown value; the class of every row must be known, or the "
      "row be left out";
  expect_refusal("", "", ": empty; a table begins with a row of column names");
  expect_refusal("a,c\n", "", ": no rows below the column names");
  expect_refusal("a;c\nx\n", "",
                 ":1: only one column, \"a;c\"; a table has several, between commas");
  expect_refusal("a,c\n\"1\n2\",x\n1\n", "", ":4: 1 cell" + counts);
  expect_refusal("a,c\n1,2,3\n", "",
                 ":2: 3 cells" + counts + "; a cell with a comma in it needs quotes");
  expect_refusal("a,c\r\n1,2\r\n3,?\r\n", "", ":3" + unknown);
  expect_refusal("\"a\n\",c\n1,x\n\"2\n\r\n\r\",?\n", "", ":7" + unknown);
  expect_refusal("a,,c\n", "", ":1: column 2 has no name");
  expect_refusal("\"a\n\",b,b\n", "", ":2: two columns have the name \"b\"");
  expect_refusal("w,c\n1,x\n", "weights w", ": no column beside the class and the weights");
}

TEST(Table, RefusesOptionsThatDoNotGoWithIt) {
  const std::string numeric = " requires a numeric data type; ";
  const std::vector<std::pair<std::string, std::string>> refused{
      {"class paly", ": there is no column \"paly\" for the class; did you mean \"play\"?"},
      {"weights w", ": there is no column \"w\" for the weights"},
      {"type zzz float", ": there is no column \"zzz\" for the type"},
      {"kind zzz ignore", ": there is no column \"zzz\" for the kind"},
      {"type size flaot",
       "the type: column \"size\": \"flaot\" is none of integer, uinteger, float, double, string; "
       "did you mean \"float\"?"},
      {"kind size class",
       "the kind: column \"size\": \"class\" is none of discrete, continuous, ignore"},
      {"kind play ignore",
       ": column \"play\" is the class, which is its kind; the kind is for attributes"},
      {"weights weight kind weight ignore",
       ": column \"weight\" is the weights, which is its kind; the kind is for attributes"},
      {"class play weights play", ": \"play\" cannot be both the class and the weights"},
      {"type weight integer",
       ":2: column \"weight\": \"1.5\" is not of the type integer that was chosen for the column"},
      {"type odd float",
       ":2: column \"odd\": \"nan\" is not of the type float that was chosen for the column"},
      {"type weight double", ": column \"weight\": Continuous column 'weight'" + numeric +
                                 "the numeric data types are integer, uinteger and float"},
      {"kind odd continuous",
       ": column \"odd\": Continuous column 'odd'" + numeric + "\"nan\" is no number"},
      {"kind none discrete",
       ": column \"none\": Null set of column values can only be used for ignore column type; it "
       "has no known value, and can only be ignored"}};
  for (const auto& [options, message] : refused)
    expect_refusal("size,none,odd,weight,play\n1,?,nan,1.5,x\n", options, message);
}

TEST(ValueText, IsThatOfAnyBytes) {
  std::string bytes;
  for (int byte = 1; byte < 256; ++byte) {
    bytes += static_cast<char>(byte);
    const std::string end = bytes.substr(bytes.size() - std::min<std::size_t>(bytes.size(), 3));
    const auto column = make_column("discrete", "string", {tree::to_domain_text(end), "a"});
    EXPECT_EQ(described(*column), "string discrete: " + end + " a");
  }
  for (const std::string text : {"\x7F", "\x7FG1", "a\x7F\x31G", "a\x7F\x34"})
    EXPECT_EQ(tree::to_cell_text(text), text);
}

TEST(ValueText, IsANumberAsTheDomainHoldsIt) {
  const texts cases = listed(
      "integer, +7,7,integer,7.0,no,integer,4e9,no,uinteger,4294967295,4294967295,uinteger,-0,no,"
      "float,0.1,0.100000001490116119384765625,float,x,no,float,nan,no,float,,no,double,0.5,0.5");
  for (std::size_t i = 0; i < cases.size(); i += 3) {
    double number = -1;
    const bool is_number = tree::number_of_text(*make_column("discrete", cases[i], {"1"}),
                                                cases[i + 1].c_str(), number);
    EXPECT_EQ(is_number ? strata::util::number_text(number) : "no", cases[i + 2]);
    EXPECT_EQ(is_number, number != -1);
  }
}

}  // namespace
}  // namespace arbor::tests
