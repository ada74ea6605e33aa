#include "arbor/table/table_loader.h"

#include <gmock/gmock.h>

#include <array>
#include <random>
#include <set>

#include "arbor/table/value_text.h"
#include "arbor/utils/memory_device.h"
#include "tests/support/columns.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using testing::ElementsAre;
using tree::load_options;
using tree::table;

// A column as "type kind: value value ...", each of which the column finds again.
std::string described(const column& described) {
  std::string text = described.get_o_set()->get_datatype() + " " + described.get_type() + ":";
  for (unsigned int row = 0; row < described.size(); ++row) {
    const unsigned int code = described.get_row_index(row);
    const std::string value = tree::value_text(described, code);
    unsigned int found = 0;
    EXPECT_TRUE(tree::code_of_text(described, value.c_str(), found) && found == code) << value;
    text += " " + value;
  }
  return text;
}

texts columns_of(const table& loaded) {
  texts columns;
  for (const auto& column : loaded.columns) columns.push_back(described(*column));
  return columns;
}

// The first column of a table with these cells below one another.
std::string column_of(const texts& cells) {
  std::string csv = "a,c\n";
  for (const std::string& cell : cells) csv += cell + ",x\n";
  return described(*load_csv(csv).columns[0]);
}

load_options with(void (*change)(load_options&)) {
  load_options options;
  change(options);
  return options;
}

TEST(TableLoader, FindsTheNarrowestTypeOfEachColumn) {
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
  // Floats whose decimal expansion is long, or too short to tell them apart.
  EXPECT_EQ(column_of({"0.1", "1e-45", "-3e-45", "inf", "3.4028235e38", "-1e99"}),
            "float continuous: 0.1 1e-45 -3e-45 inf 3.4028235e+38 -inf");
}

TEST(TableLoader, KeepsTheZeroThatComesFirst) {
  EXPECT_EQ(column_of({"1.5", "0", "-0.0", "0"}), "float continuous: 1.5 0 0 0");
  EXPECT_EQ(column_of({"1.5", "-0.0", "0", "-1"}), "float continuous: 1.5 -0 -0 -1");
  EXPECT_EQ(column_of({"+1", "-0.0", "0"}), "float continuous: 1 -0 -0");
  EXPECT_EQ(column_of({"+1", "0", "-0.0"}), "float continuous: 1 0 0");
  EXPECT_EQ(column_of({"-0", "0"}), "integer continuous: 0 0");
}

TEST(TableLoader, TakesTypesKindsClassAndUnknownTextsAsChosen) {
  const load_options options = with([](load_options& o) {
    o.class_name = "play";
    o.types = {{"code", "string"}};
    o.kinds = {{"size", "discrete"}, {"note", "ignore"}};
    o.unknown_texts = {"NA", "", "\"\""};
  });
  const table loaded = load_csv("code,play,size,note\n01,y,3,?\nNA,n,,\"\"\n1,y,4,NA\n", options);
  EXPECT_THAT(columns_of(loaded), ElementsAre("string discrete: 01 NA 1", "string class: y n y",
                                              "integer discrete: 3 ? 4", "string ignore: ? NA NA"));
  EXPECT_EQ(loaded.class_index, 1U);
}

TEST(TableLoader, TakesNoKnownTextForTheUnknownOne) {
  const load_options options = with([](load_options& o) { o.unknown_texts = {"", "\"\""}; });
  const table loaded = load_csv("a,b,c\n\"\",1,x\n,2,x\n?,,x\n\x7F?,,x\n", options);
  EXPECT_EQ(loaded.columns[0]->get_o_set()->size_of_known(), 2U);
  EXPECT_EQ(tree::unknown_cells(*loaded.columns[0], loaded.cases), 2U);
  const auto range = [&](std::size_t column, unsigned int first_row) {
    const auto codes = tree::occurring_range(*loaded.columns[column], {{first_row, 1}, {3, 1}});
    return std::to_string(codes.first) + "-" + std::to_string(codes.second);
  };
  EXPECT_THAT((texts{range(0, 0), range(1, 1), range(1, 2)}), ElementsAre("2-3", "2-3", "0-0"));
}

TEST(TableLoader, LeavesOutRowsOfWeightZeroWholly) {
  load_options options = with([](load_options& o) { o.weights_name = "w"; });
  std::size_t rows_read = 0;
  options.progress = [&](std::size_t rows) { EXPECT_EQ(rows, ++rows_read); };
  const table loaded = load_csv("a,c,w\nodd,?,0\n1,x,0.5\n2,y,2\n", options);
  EXPECT_EQ(rows_read, 3U);
  EXPECT_THAT(columns_of(loaded),
              ElementsAre("integer continuous: 1 2", "string class: x y", "float weights: 0.5 2"));
  ASSERT_EQ(loaded.cases.size(), 2U);
  EXPECT_EQ(loaded.cases[1].first, 1U);
  EXPECT_EQ(loaded.cases[0].second, 0.5F);
  EXPECT_EQ(loaded.total_weight, 2.5F);
  EXPECT_THAT(tree::class_weights(loaded.class_column(), loaded.cases), ElementsAre(0.5F, 2.0F));
  options.progress = nullptr;
  for (const std::string bad : {"-1", "x", "?", "1e39", "inf", "nan"}) {
    EXPECT_EQ(
        refusal("a,w,c\n1,1,x\n1," + bad + ",x\n", options),
        ":3: column \"w\": \"" + bad +
            "\" is no weight; a weight is a finite number from 0 up, and 0 leaves the row out");
  }
  EXPECT_EQ(refusal("a,w,c\n1,0,x\n", options), ": every row has the weight 0");
  EXPECT_EQ(refusal("w,a,c\n3e38,1,x\n3e38,2,y\n", options),
            ": the weights add up to more than a float can hold");
  EXPECT_EQ(refusal("w,c\n1,x\n", options), ": no column beside the class and the weights");
}

TEST(TableLoader, LooksUpTextsOfAnyBytes) {
  texts cells;
  std::string expected = "string discrete:";
  for (int byte = 1; byte < 256; ++byte) {
    for (const std::string& text :
         {std::string(1, static_cast<char>(byte)), "a" + std::string(2, static_cast<char>(byte))}) {
      if (text.find_first_of(",\"\r\n?") != std::string::npos) continue;
      cells.push_back(text);
      expected += " " + text;
    }
  }
  EXPECT_EQ(column_of(cells), expected);
}

TEST(TableLoader, RemarksOnFewTextsAmongNumbersAndOnNumbersThatMerge) {
  const std::string but = "column \"a\" is of texts, but all its values are numbers except ";
  const std::string equal = "loses 1 distinct number: as float it is equal to another one [ ]";
  const std::vector<std::pair<std::string, texts>> tables{
      {"a,c\nNA,x\n1,x\n2.5,x\n7,y\nNA,x\n", {but + "\"NA\" in 2 cells [ ? '' NA ]"}},
      {"a,c\nit's,x\n1,x\n2e0,y\n\"\",x\n7,x\n",
       {but + "\"it's\" in 1 cell, \"\" in 1 cell [ ? '' it's \"\" ]"}},
      {"a,c\nN\tA,x\n1,x\n2,y\n", {but + "\"N\\tA\" in 1 cell [ ]"}},
      {"a,c\nNA,x\n1,x\n",
       {"column \"c\" is the class and has a single value: nothing can be gained [ ]"}},
      {"a,c\n1,x\n2,x\n3,x\n4,x\n5,y\nr,x\ns,x\nt,x\n",
       {but + "\"r\" in 1 cell, \"s\" in 1 cell, \"t\" in 1 cell [ ? '' r s t ]"}},
      {"a,c\n1,x\n2,x\n3,x\n4,x\n5,y\nr,x\ns,x\nt,x\nu,x\n", {}},
      {"a,c\n1,1\n2,2\n3,x\n", {}},
      {"a,b,c\n?,1,x\n?,2,y\n", {"column \"a\" has no known value and is ignored [ ]"}},
      // 16777216 and 16777217 are one float, and so are numbers too small for one; 0.1 is 0.10.
      {"a,b,c\n16777216,1e-60,x\n16777217,2e-60,x\n16777217.0,1e-60,x\n0.1,-1e-60,x\n0.10,3,y\n",
       {"column \"a\" " + equal,
        "column \"b\" loses 2 distinct numbers: as float they are equal to others [ ]"}},
      {"a,c\n12345678901234567890,x\n12345678901234567891,y\n1.2345678901234567891e19,x\n",
       {"column \"a\" " + equal}},
      {"a,c\n1.5,x\n1e39,x\ninf,y\n-1e39,y\n-inf,y\n",
       {"column \"a\" loses 2 distinct numbers: as float they are equal to others [ ]"}},
      {"a,c\n0x1000001,x\n16777216,y\n16777217,x\n", {"column \"a\" " + equal}},
  };
  for (const auto& [csv, expected] : tables) {
    texts remarks;
    for (const tree::table_remark& remark : load_csv(csv).remarks) {
      remarks.push_back(remark.text + " [ ");
      for (const std::string& text : remark.to_declare)
        remarks.back() += (text.empty() ? "''" : text) + " ";
      remarks.back() += "]";
    }
    EXPECT_EQ(remarks, expected) << csv;
  }
}

bool fits(const std::string& type, const std::string& cell) {
  if (type != "string" && (cell == "+" || cell == "nan")) return false;
  return message_of([&] { make_domain(type, {cell}); }).empty();
}

std::string narrowest_type(const std::set<std::string>& cells) {
  for (const char* type : {"integer", "float"}) {
    if (std::all_of(cells.begin(), cells.end(), [&](const auto& c) { return fits(type, c); }))
      return type;
  }
  return "string";
}

TEST(TableLoader, MakesTheColumnThatTheTextsMakeOneByOne) {
  const texts odd = {
      " 7",         "+5",        "007",       "1e3",        "0x10",    "0.0",
      "1.0",        ".5",        "5.",        "16777217",   "1e-60",   "-2147483648",
      "2147483648", "nan",       "inf",       "1e-05",      "0.00001", "+",
      "--1",        "123456789", "123456780", "4294967296", "1 ",      "/1",
      "1:",         "abcdefgh",  "abcdefghi", "-3.25",   "1234567890123456789.5"};
  const texts types = {"integer", "uinteger", "float", "double", "string", "", "", ""};
  std::mt19937 random(5);
  const auto draw = [&](std::size_t end) { return random() % end; };
  for (int round = 0; round < 250; ++round) {
    // Regular cells of one sort, with unknown and odd ones from some row on, if at all.
    const std::string type = types[draw(types.size())];
    const std::size_t rows = round < 3 ? 70000 : 1 + draw(600);
    const std::size_t sort = draw(6);
    const std::size_t range = std::array{3, 300, 70000, 2147483647}[draw(4)];
    const std::size_t first_odd = draw(3) == 0 ? rows : draw(rows);
    texts cells;
    std::set<std::string> distinct{"?"};
    std::string csv = "x,c\n";
    while (cells.size() < rows) {
      std::string cell = std::to_string(draw(range));
      if (sort == 1 && draw(2) == 0 && cell != "0") cell = "-" + cell;
      if (sort == 2) cell += "." + std::to_string(draw(100));
      if (sort == 3) cell = "text " + cell;
      if (sort == 4) cell = "0." + std::to_string(draw(range)) + cell;
      if (draw(40) == 0) cell = "?";
      if (cells.size() >= first_odd && draw(50) == 0) cell = odd[draw(odd.size())];
      if (!type.empty() && distinct.count(cell) == 0 && !fits(type, cell)) cell = "?";
      csv += cell + ",x\n";
      distinct.insert(cell);
      cells.push_back(cell);
    }
    if (distinct.size() == 1) continue;
    const std::string expected_type = type.empty() ? narrowest_type(distinct) : type;
    const std::string kind =
        expected_type == "string" || expected_type == "double" ? "discrete" : "continuous";
    load_options options;
    if (!type.empty()) options.types["x"] = type;
    options.kinds["x"] = kind;
    const auto record = [](const column& written) {
      strata::inpout::memory_device device;
      strata::inpout::obinstream out(device);
      out << &written;
      return device.bytes();
    };
    EXPECT_EQ(record(*load_csv(csv, options).columns[0]),
              record(*make_column(kind, expected_type, cells)))
        << "round " << round << ", " << expected_type;
  }
}

TEST(TableLoader, RefusesWhatIsNoTableNamingThePlace) {
  const std::string counts = ", but the first row names 2 columns";
  const std::string unknown =
      ": column \"c\": \"?\" is the unknown value; the class of every row must be known, or the "
      "row be left out";
  const std::vector<std::pair<std::string, std::string>> refused{
      {"", ": empty; a table begins with a row of column names"},
      {"a,c\n", ": no rows below the column names"},
      {"a;c\nx\n", ":1: only one column, \"a;c\"; a table has several, between commas"},
      {"a,c\n\"1\n2\",x\n1\n", ":4: 1 cell" + counts},
      {"a,c\r\n1,2\r\n3,?\r\n", ":3" + unknown},
      {"\"a\n\",c\n1,x\n\"2\n\r\n\r\",?\n", ":7" + unknown},
      {"a,c\n1,2,3\n", ":2: 3 cells" + counts + "; a cell with a comma in it needs quotes"},
      {"a,,c\n", ":1: column 2 has no name"},
      {"\"a\n\",b,b\n", ":2: two columns have the name \"b\""},
  };
  for (const auto& [csv, message] : refused) EXPECT_EQ(refusal(csv), message);
}

TEST(TableLoader, RefusesOptionsThatDoNotGoWithTheTable) {
  const struct {
    void (*change)(load_options&);
    std::string message;
  } refused[] = {
      {[](load_options& o) { o.class_name = "paly"; },
       ": there is no column \"paly\" for the class; did you mean \"play\"?"},
      {[](load_options& o) { o.weights_name = "w"; }, ": there is no column \"w\" for the weights"},
      {[](load_options& o) { o.types["zzz"] = "float"; },
       ": there is no column \"zzz\" for the type"},
      {[](load_options& o) { o.kinds["zzz"] = "ignore"; },
       ": there is no column \"zzz\" for the kind"},
      {[](load_options& o) { o.types["size"] = "flaot"; },
       "the type: column \"size\": \"flaot\" is none of integer, uinteger, float, double, string; "
       "did you mean \"float\"?"},
      {[](load_options& o) { o.kinds["size"] = "class"; },
       "the kind: column \"size\": \"class\" is none of discrete, continuous, ignore"},
      {[](load_options& o) { o.kinds["play"] = "ignore"; },
       ": column \"play\" is the class, which is its kind; the kind is for attributes"},
      {[](load_options& o) { o.weights_name = "weight", o.kinds["weight"] = "ignore"; },
       ": column \"weight\" is the weights, which is its kind; the kind is for attributes"},
      {[](load_options& o) { o.class_name = o.weights_name = "play"; },
       ": \"play\" cannot be both the class and the weights"},
      {[](load_options& o) { o.types["weight"] = "integer"; },
       ":2: column \"weight\": \"1.5\" is not of the type integer that was chosen for the column"},
      {[](load_options& o) { o.types["odd"] = "float"; },
       ":2: column \"odd\": \"nan\" is not of the type float that was chosen for the column"},
      {[](load_options& o) { o.types["weight"] = "double"; },
       ": column \"weight\": Continuous column 'weight' requires a numeric data type; the numeric "
       "data types are integer, uinteger and float"},
      {[](load_options& o) { o.kinds["odd"] = "continuous"; },
       ": column \"odd\": Continuous column 'odd' requires a numeric data type; \"nan\" is no "
       "number"},
      {[](load_options& o) { o.kinds["none"] = "discrete"; },
       ": column \"none\": Null set of column values can only be used for ignore column type; it has no known value, and can only be ignored"},
  };
  for (const auto& [change, message] : refused)
    EXPECT_EQ(refusal("size,none,odd,weight,play\n1,?,nan,1.5,x\n", with(change)), message);
}

}  // namespace
}  // namespace arbor::tests
