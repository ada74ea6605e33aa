#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <map>
#include <numeric>
#include <optional>
#include <random>
#include <regex>
#include <set>
#include <utility>

#include "arbor/table/cells/secret_hash.h"
#include "arbor/table/decimal_domain.h"
#include "arbor/table/memory_table.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/memory_classification.h"
#include "tests/support/byte_sources.h"
#include "tests/support/cells.h"
#include "tests/support/rows.h"
#include "tests/support/sharing_threads.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

using testing::ElementsAre;
using tree::table;

// A column as "type kind: value value ...", each of which the column finds again.
std::string described(const column& source) {
  std::string text = tree::data_type_of(source) + " " + source.get_type() + ":";
  for (unsigned int row = 0; row < source.size(); ++row) {
    const unsigned int code = source.get_row_index(row);
    const std::string value = tree::value_text(source, code);
    unsigned int found = 0;
    EXPECT_TRUE(tree::code_of_text(source, value.c_str(), found) && found == code) << value;
    text += " " + value;
  }
  return text;
}

// A file of these lines, between which "/" stands, with "%" for a line break in a cell. The class
// is added.
std::string csv_of(const std::string& lines) {
  std::string csv;
  std::istringstream in(lines);
  for (std::string line; std::getline(in, line, '/');)
    csv += line + (csv.empty() ? ",c\n" : csv.find(",x\n") == std::string::npos ? ",x\n" : ",y\n");
  std::replace(csv.begin(), csv.end(), '%', '\n');
  return csv;
}

// What becomes of such a file: its message if it is refused, else the columns but the class, and
// the remarks with the texts to declare.
std::string outcome(const std::string& lines, const std::string& options) {
  std::string result;
  const std::string refused = refusal(csv_of(lines), [&](const std::string& path) {
    const table loaded = tree::load_table(path, options_of(options));
    for (const auto& column : loaded.columns)
      result += column->is_class() ? "" : described(*column) + "; ";
    for (const tree::table_remark& remark : loaded.remarks) {
      result += "# " + remark.text + " ";
      for (const std::string& text : remark.to_declare) result += "'" + text + "' ";
    }
  });
  return refused.empty() ? result.substr(0, result.size() - 1) : refused;
}

// A line each: the file's lines | options => outcome, which goes on in indented lines.
const std::string files_and_outcomes =
    R"(i,f,s,late,none/1,1.5,x,1,?/-2,2,1,2.5,/,?,,1,? | => integer continuous: 1 -2 ?;
 decimal continuous: 1.5 2 ?; string discrete: x 1 ?; decimal continuous: 1 2.5 1; null ignore:;
 # column "none" has no known value and is ignored
p,n,b/+,nan,2147483648/1,1,1 | => string discrete: + 1; string discrete: nan 1;
 uinteger continuous: 2147483648 1;
a/1.50/007/b/e | => string discrete: 1.50 007 b e;
a/""//b | => string discrete:  ? b;
a/0.1/1e-45/-3e-45/inf/3.4028235e38/-1e99 | => float continuous: 0.1 1e-45 -3e-45 inf
 3.4028235e+38 -inf;
 # column "a" is rounded to float, which changes the numbers in 1 cell
z,y,x,w/1.5,1.5,+1,-0/0,-0.0,-0.0,0/-0.0,0,0,?/0,-1,?,? | => decimal continuous: 1.5 0 0 0;
 decimal continuous: 1.5 0 0 -1; decimal continuous: 1 0 0 ?; integer continuous: 0 0 ? ?;
z,y,x,w/1.5,1.5,+1,-0/0,-0.0,-0.0,0/-0.0,0,0,?/inf,-inf,inf,?/0,0,0,? | =>
 float continuous: 1.5 0 0 inf 0; float continuous: 1.5 -0 -0 -inf -0;
 float continuous: 1 -0 -0 inf -0; integer continuous: 0 0 ? ? ?;
a,b,d/1.50,-7,0/15e-1,3000000000,4294967295/ 1.5,+3,1 | => decimal continuous: 1.5 1.5 1.5;
 decimal continuous: -7 3000000000 3; uinteger continuous: 0 4294967295 1;
a,b/0.5,0.5/4294967295.5,4294967296.5/1.5,1.5 | => decimal continuous: 0.5 4294967295.5 1.5;
 float continuous: 0.5 4294967296 1.5;
 # column "b" is rounded to float, which changes the numbers in 1 cell
a,b/-9223372036854775808,1e36/18446744073709551615,1e-37/0,0 | =>
 float continuous: -9.223372e+18 1.8446744e+19 0; float continuous: 1e+36 1e-37 0;
 # column "a" is rounded to float, which changes the numbers in 2 cells
a/4294967296/20000000000/0.1 | => float continuous: 4294967296 2e+10 0.1;
a,b/1e36,1e-37/-1e36,0/1e36,1e-37 | type b decimal kind a discrete => decimal discrete:
 1000000000000000000000000000000000000 -1000000000000000000000000000000000000
 1000000000000000000000000000000000000; decimal continuous:
 0.0000000000000000000000000000000000001 0 0.0000000000000000000000000000000000001;
a,b/1,7/2,7/3,7 | type a decimal type b decimal => decimal continuous: 1 2 3;
 decimal continuous: 7 7 7;
a/0/4294967296/1 | type a decimal => : column "a": its numbers are no multiples of a common step
 with at most 4294967295 steps between the least and the greatest, which the type decimal needs; the
 type float rounds them
a/inf | type a decimal => :2: column "a": "inf" is not of the type decimal that was chosen for the
 column
a,b,d/"1.234,5 €","1 234,50","-$1,50"/7,",5",$-2e1/+1.234.567 €,"1'234'567",3 | decimal , strip €
 strip $ => decimal continuous: 1234.5 7 1234567; decimal continuous: 1234.5 0.5 1234567;
 decimal continuous: -1.5 -20 3;
a,b/1.5,007/"1,5",1.234/1.234,1'234 | decimal , => string discrete: 1.5 1,5 1.234;
 integer continuous: 7 1234 1234;
 # column "a" is of texts, but all its values are numbers except "1.5" in 1 cell '?' '' '1.5'
a,b/1.234,7/2.5,"1,234" | decimal . type b integer kind a discrete => decimal discrete: 1.234 2.5;
 integer continuous: 7 1234;
a,b/01,3/NA,/1,4 | type a string kind b discrete unknown NA unknown '' => string discrete: 01 NA 1;
 integer discrete: 3 ? 4;
a/?/NA//"" | kind a ignore unknown NA unknown '' unknown "" => string ignore: ? NA NA NA;
a/NA/1/2.5/7/NA | => string discrete: NA 1 2.5 7 NA;
 # column "a" is of texts, but all its values are numbers except "NA" in 2 cells '?' '' 'NA'
a/it's/2e0/2e0/""/2e0 | unknown NA => string discrete: it's 2e0 2e0  2e0; # column "a" is of texts,
 but all its values are numbers except "it's" in 1 cell, "" in 1 cell 'NA' 'it's' '""'
a/N	A/1/2 | => string discrete: N	A 1 2;
 # column "a" is of texts, but all its values are numbers except "N\tA" in 1 cell
a/1/2/3/4/r/s/t | => string discrete: 1 2 3 4 r s t; # column "a" is of texts, but all its values
 are numbers except "r" in 1 cell, "s" in 1 cell, "t" in 1 cell '?' '' 'r' 's' 't'
a,b,d,e,f/1,2,3,4,r/1,2,3,-,5/NA,NA,NA,4,5 | => string discrete: 1 1 NA; string discrete: 2 2 NA;
 string discrete: 3 3 NA; string discrete: 4 - 4; string discrete: r 5 5; # columns "a", "b", "d"
 and 2 more are of texts, but all their values are numbers except "NA" in 3 cells, "-" in 1 cell,
 "r" in 1 cell '?' '' 'NA' '-' 'r'
a,b,d/1,1,1/r,u,x/s,v,2/t,w,3/4,4,4/5,5,5/6,6,6 | => string discrete: 1 r s t 4 5 6;
 string discrete: 1 u v w 4 5 6; string discrete: 1 x 2 3 4 5 6; # columns "a", "b" and "d" are of
 texts, but all their values are numbers except "r" in 1 cell, "s" in 1 cell, "t" in 1 cell, "u" in
 1 cell, "v" in 1 cell and 2 other texts '?' '' 'r' 's' 't' 'u' 'v'
 'w' 'x'
a/1/2/3/4/5/r/s/t/u | => string discrete: 1 2 3 4 5 r s t u;
a/1 | => integer continuous: 1; # column "c" is the class and has a single value: nothing can be
 gained
a,b/16777216,1.5/16777217,inf/+16777217,1e39/0.1,-1e39/0.10,? | type a float => float continuous:
 16777216 16777216 16777216 0.1 0.1; float continuous: 1.5 inf inf -inf ?;
 # column "b" is rounded to float, which changes the numbers in 2 cells
 # column "a" loses 1 distinct number: as float it is equal to another one
 # column "b" loses 1 distinct number: as float it is equal to another one
a/1e-60/2e-60/1e-60/-1e-60/3 | => float continuous: 0 0 0 0 3;
 # column "a" is rounded to float, which changes the numbers in 4 cells
 # column "a" loses 2 distinct numbers: as float they are equal to others
a,b/0x1000001,12345678901234567890/16777216,12345678901234567891/16777217,1.2345678901234567891e19
 | type b float => float continuous: 16777216 16777216 16777216;
 float continuous: 1.2345679e+19 1.2345679e+19 1.2345679e+19;
 # column "a" is rounded to float, which changes the numbers in 2 cells
 # column "a" loses 1 distinct number: as float it is equal to another one
 # column "b" loses 1 distinct number: as float it is equal to another one
a/+10000000100/+10000000200 | type a float => float continuous: 1e+10 1e+10;
 # column "a" loses 1 distinct number: as float it is equal to another one
size/1 | class siez => : there is no column "siez" for the class; did you mean "size"?
size/1 | weights kg => : there is no column "kg" for the weights
size/1 | type zzz float => : there is no column "zzz" for the type
size/1 | kind zzz ignore => : there is no column "zzz" for the kind
size/1 | type size flaot => the type: column "size": "flaot" is none of integer, uinteger, decimal,
 float, double, string; did you mean "float"?
size/1 | kind size class => the kind: column "size": "class" is none of discrete, continuous, ignore
size/1 | kind c ignore => : the kind: column "c" is the class, not an attribute
w,a/1,1 | weights w kind w ignore => : the kind: column "w" holds the weights, not an attribute
size/1 | class size weights size => : "size" cannot be both the class and the weights
w/1 | weights w => : no column besides the class and the weights
a/1.5 | type a integer => :2: column "a": "1.5" is not of the type integer that was chosen for the
 column
a/nan | type a float => :2: column "a": "nan" is not of the type float that was chosen for the
 column
a/1 | type a double => : column "a": Continuous column 'a' requires a numeric data type; the numeric
 data types are integer, uinteger, decimal and float
a/1/red | kind a continuous => :3: column "a": "red" is no number, and the column is continuous
a/? | kind a discrete => : column "a": Null set of column values can only be used for ignore column
 type; it has no known value, and can only be ignored
w,a/0,1 | weights w => : every row has the weight 0
w,a/6e35,1/7e35,2 | weights w type w float => float weights: 6e+35 7e+35; integer continuous: 1 2;
w,a/7e35,1/7e35,2 | weights w => : column "w": the weights add up to 1.4e+36, and above 1.329228e+36
 the sums that make up a gain do not fit a float; divide all weights by the same number
w,a/1,1/-1,1 | weights w => :3: column "w": "-1" is no weight; a weight is a finite number from 0
 up, and 0 leaves the row out
a,,b | => : no rows below the column names
,b/1,2 | => integer ignore: 1; integer continuous: 2; # column "c" is the class and has a single
 value: nothing can be gained
"a%",b,b | => :2: two columns have the name "b"
a | => : no rows below the column names
a/1,2/1 | => :2: 3 cells, but the first row names 2 columns; a cell with a delimiter in it needs
 quotes
"a%1",b/1 | => :3: 2 cells, but the first row names 3 columns
"a%",b/1,x/"2%",? | class b => :5: column "b": "?" is the unknown value; the class of every row must
 be known, or the row be left out)";

TEST(Table, IsWhatTheCellsAndTheOptionsMakeOfIt) {
  std::istringstream in(std::regex_replace(files_and_outcomes, std::regex("\n "), " "));
  for (std::string line; std::getline(in, line);) {
    const std::size_t options = line.find(" | "), expected = line.find("=> ");
    EXPECT_EQ(outcome(line.substr(0, options), line.substr(options + 3, expected - options - 3)),
              line.substr(expected + 3));
  }
}

TEST(Table, HasTheWeightsAndCodesOfItsRows) {
  tree::load_options options = options_of("class b weights w");
  std::size_t rows_read = 0;
  options.progress = [&](std::size_t rows) { rows_read = rows; };
  const table loaded = load_csv("a,b,w\nodd,?,0\n1,x,0.5\n?,y,2\n2,x,1\n", options);
  EXPECT_EQ(rows_read, 4U);
  ASSERT_EQ(loaded.cases.size(), 3U);
  EXPECT_EQ(loaded.total_weight, 3.5F);
  EXPECT_THAT(tree::class_weights(loaded.class_column(), loaded.cases), ElementsAre(1.5F, 2.0F));
  EXPECT_EQ(described(*loaded.columns[2]), "decimal weights: 0.5 2 1");
  EXPECT_EQ(tree::unknown_cells(*loaded.columns[0], loaded.cases), 1U);
  const auto range = tree::occurring_range(*loaded.columns[0], {{1, 1}, {2, 1}});
  EXPECT_EQ(range.first * 10 + range.second, 23U);
  EXPECT_EQ(tree::occurring_range(*loaded.columns[0], {{1, 1}}).second, 0U);
  for (const std::string weight : {"-1", "x", "?", "1e39", "inf", "nan"})
    EXPECT_NE(outcome("w,a/1,1/" + weight + ",1", "weights w"), "") << weight;
}

// Returns all of a table but its rows, or what it is refused with, and puts its rows into `rows`.
template <class Load>
std::string told(Load load, std::string& rows) {
  std::ostringstream text, cells;
  const std::string refused = message_of([&] {
    const table loaded = load();
    text << std::hexfloat << loaded.class_index << " " << loaded.total_weight << "\n";
    for (const auto& column : loaded.columns)
      text << column->get_name() << column->get_type() << record_of(column->get_o_set()) << "\n";
    for (const auto& remark : loaded.remarks) text << "# " << remark.text << "\n";
    for (const auto& remark : loaded.input_remarks) text << "# " << remark.text << "\n";
    for (const auto& [row, weight] : loaded.cases) {
      for (const auto& column : loaded.columns) cells << column->get_row_index(row) << " ";
      cells << std::hexfloat << weight << "\n";
    }
  });
  rows = cells.str();
  return refused.empty() ? text.str() : refused;
}

void expect_same_in_parts(const texts& paths, const tree::load_options& options) {
  std::string whole_rows;
  const std::string whole = told([&] { return tree::load_table(paths, options); }, whole_rows);
  for (const std::size_t parts : {1U, 2U, 3U, 5U}) {
    texts of_parts(parts), rows(parts);
    share_rows(parts, [&](std::size_t part, tree::row_sharing& sharing) {
      const auto load = [&] { return tree::load_table(paths, options, sharing); };
      of_parts[part] = told(load, rows[part]);
    });
    EXPECT_THAT(of_parts, testing::Each(whole)) << parts;
    EXPECT_EQ(std::accumulate(rows.begin(), rows.end(), std::string()), whole_rows) << parts;
  }
}

TEST(TableInParts, IsTheWholeTable) {
  std::istringstream in(std::regex_replace(files_and_outcomes, std::regex("\n "), " "));
  for (std::string line; std::getline(in, line);) {
    SCOPED_TRACE(line);
    const std::size_t options = line.find(" | ") + 3;
    const temporary_file csv(csv_of(line.substr(0, options - 3)));
    expect_same_in_parts({csv.path()},
                         options_of(line.substr(options, line.find("=> ") - options)));
  }
}

// Cells of one sort, with a few odd ones among them.
texts random_cells(std::mt19937& random, std::size_t rows) {
  const texts odd = listed(
      "?,0,-0,-0.0,0.00,7,-7,2.50,1e3,1e-45,+16777216,16777217,4294967296,-99999999999999999,"
      "12345678901234567,0.0000001,inf,+5,007,x");
  const auto draw = [&](std::size_t end) { return random() % end; };
  const std::size_t sort = draw(4), range = std::array{5, 90, 70000, 100000000}[draw(4)];
  const std::size_t first_odd = draw(odd.size()), odd_in = 1 + draw(60);
  texts cells(rows);
  for (std::string& cell : cells) {
    const std::string number = std::to_string(draw(range));
    cell = texts{number, "-1" + number, number + ".5", "t" + number}[sort];
    if (draw(odd_in) == 0) cell = odd[(first_odd + draw(4)) % odd.size()];
  }
  return cells;
}

// Of one to three files with any ends of lines.
TEST(TableInParts, IsTheWholeTableOfRandomCells) {
  const texts choices = listed(
      ",kind a discrete,type a float type b float,unknown x unknown 7 type b float,type a string");
  std::mt19937 random(11);
  const auto draw = [&](std::size_t end) { return random() % end; };
  for (int round = 0; round < 40; ++round) {
    SCOPED_TRACE(round);
    const std::string end = texts{"\n", "\r\n", "\r", "\n\n \n"}[draw(4)];
    const std::size_t unclassed_in = 1 + draw(400);
    std::vector<std::unique_ptr<temporary_file>> files;
    texts paths;
    for (std::size_t left = 1 + draw(2) * draw(3); left > 0; --left) {
      const std::size_t rows = 1 + draw(draw(2) == 0 ? 9 : 400);
      const texts a = random_cells(random, rows), b = random_cells(random, rows);
      std::string csv = "a,b,w,c" + end;
      for (std::size_t row = 0; row < rows; ++row) {
        csv += a[row] + "," + b[row] + "," + texts{"0", "1", "0.3", "1e-3"}[draw(4)] + ",";
        csv += (draw(unclassed_in) == 0 ? "?" : texts{"p", "\"q\n\"\"\""}[draw(2)]) + end;
      }
      csv.resize(csv.size() - draw(2));
      paths.push_back(files.emplace_back(std::make_unique<temporary_file>(csv))->path());
    }
    tree::load_options options =
        options_of(choices[draw(choices.size())] + (draw(2) == 0 ? "" : " weights w class c"));
    options.skips_unknown_class = draw(2) == 0;
    if (draw(9) == 0) options.input.comment = "t7";
    if (draw(4) == 0) options.declared.columns = {{"b", "", "", texts{"0", "7", "x", "1", "2"}}};
    expect_same_in_parts(paths, options);
  }
}

// A column in memory, and the cells that a file has of it.
struct column_and_cells {
  std::vector<char> bytes;
  std::vector<unsigned char> unknown;
  tree::memory_column column;
  texts cells;
};

// Numbers of one type that are not aligned; of texts if there are some.
template <class Number>
void add_numbers(column_and_cells& made, std::mt19937& random, std::size_t rows) {
  constexpr std::size_t step = sizeof(Number) + 1;
  using limits = std::numeric_limits<Number>;
  const Number range = static_cast<Number>(1 + random() % 100), part = random() % 2 == 0 ? 1 : 8;
  made.bytes.resize(1 + rows * step);
  made.column.numbers = {tree::type_of_number<Number>(), made.bytes.data() + 1, rows, step};
  const std::size_t odd_in = 2 + random() % 60;
  for (std::size_t row = 0; row < rows; ++row) {
    Number number = static_cast<Number>(static_cast<Number>(random() % 100) - range) / part;
    if (random() % odd_in == 0)
      number =
          std::array<Number, 6>{limits::max(),      limits::lowest(), limits::quiet_NaN(),
                                limits::infinity(), limits::min(),    Number(-0.0)}[random() % 6];
    std::memcpy(made.bytes.data() + 1 + row * step, &number, sizeof number);
    std::array<char, 32> text{};
    char* const end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    std::string cell(text.data(), end);
    if (std::is_floating_point_v<Number> && cell.find_first_of(".en") == cell.npos) cell += ".0";
    const bool is_nan = cell.find("nan") != cell.npos;
    made.cells.push_back(is_nan || made.unknown[row] != 0 ? "?" : cell);
    if (!made.column.texts) continue;
    const auto place = static_cast<std::size_t>(number);
    const bool is_known = made.cells[row] != "?" && place < made.column.texts->size();
    made.cells[row] = is_known ? (*made.column.texts)[place] : "?";
    if (made.cells[row].find(',') != std::string::npos)
      made.cells[row] = '"' + made.cells[row] + '"';
  }
}

void fill_randomly(column_and_cells& made, std::mt19937& random, std::size_t rows) {
  const std::size_t known_in = random() % 9, type = random() % 16;
  made.unknown.resize(rows);
  for (unsigned char& one : made.unknown) one = known_in > 5 && random() % known_in == 0;
  made.column.unknown = made.unknown.data();
  if (type > 9)
    made.column.texts = random() % 3 == 0 ? texts{"1", "01", "2.5", " 7"}
                                          : texts{"x", " y", "a, b", "?", "", "7", "é"};
  switch (type) {
    case 0:
      return add_numbers<float>(made, random, rows);
    case 1:
    case 2:
      return add_numbers<double>(made, random, rows);
    case 3:
    case 10:
      return add_numbers<std::int8_t>(made, random, rows);
    case 4:
    case 11:
      return add_numbers<std::uint8_t>(made, random, rows);
    case 5:
    case 12:
      return add_numbers<std::int16_t>(made, random, rows);
    case 6:
      return add_numbers<std::uint16_t>(made, random, rows);
    case 7:
    case 13:
      return add_numbers<std::int32_t>(made, random, rows);
    case 8:
      return add_numbers<std::uint64_t>(made, random, rows);
    case 14:
      return add_numbers<std::uint32_t>(made, random, rows);
    default:
      return add_numbers<std::int64_t>(made, random, rows);
  }
}

TEST(MemoryTable, IsThatOfItsFileForAnyNumberOfThreads) {
  std::mt19937 random(5);
  int accepted = 0;
  for (int round = 0; round < 60; ++round) {
    SCOPED_TRACE(round);
    const std::size_t rows = round == 0 ? 12000 : 1 + random() % 300;
    std::array<column_and_cells, 4> columns;
    std::string csv = "a,b,d,c\n";
    for (std::size_t i = 0; i < columns.size(); ++i) {
      columns[i].column.name = csv.substr(2 * i, 1);
      if (i < 3) fill_randomly(columns[i], random, rows);
    }
    std::vector<std::int8_t> classes(rows);
    for (std::int8_t& one : classes) one = static_cast<std::int8_t>(random() % 2);
    columns[3].column.numbers = tree::numbers_of(classes);
    columns[3].column.texts = {"p", "q"};
    for (std::size_t row = 0; row < rows; ++row) {
      for (std::size_t i = 0; i < 3; ++i) csv += columns[i].cells[row] + ",";
      csv += classes[row] == 0 ? "p\n" : "q\n";
    }
    tree::memory_table from{"memory", {}, 3, nullptr};
    for (const column_and_cells& one : columns) from.columns.push_back(one.column);
    const temporary_file file(csv);
    const tree::load_options options = options_of(round % 3 == 0 ? "kind a discrete" : "");
    std::string rows_of_file, rows_in_memory;
    const auto load = [&] { return tree::load_table(file.path(), options); };
    const std::string of_file = told(load, rows_of_file);
    for (const unsigned int threads : {1U, 3U}) {
      const auto make = [&] {
        return tree::make_table(from, {options.kinds, "the kind", threads, {}});
      };
      const std::string in_memory = told(make, rows_in_memory);
      if (of_file.find('\n') == std::string::npos) {  // refused, at a place that differs
        EXPECT_EQ(in_memory.find('\n'), std::string::npos) << in_memory;
        continue;
      }
      ++accepted;
      EXPECT_EQ(in_memory, of_file);
      EXPECT_EQ(rows_in_memory, rows_of_file);
      const table loaded = load();
      const tree::decision_tree t = grown(loaded, 1);
      std::vector<const tree::memory_column*> attributes;
      for (const auto& attribute : t.attributes)
        attributes.push_back(&columns[csv.find(attribute->get_name()) / 2].column);
      std::vector<unsigned int> predicted(rows);
      std::vector<double> probabilities(rows * t.class_count());
      tree::classify_columns(t, attributes, rows, {{}, threads, {}}, predicted.data(),
                             probabilities.data());
      tree::row_classifier classify(t, loaded);
      for (unsigned int row = 0; row < rows; ++row) {
        const std::vector<double>& expected = classify(row).distribution;
        EXPECT_EQ(predicted[row], tree::likeliest_class(expected)) << row;
        EXPECT_TRUE(std::equal(expected.begin(), expected.end(),
                               probabilities.begin() + row * t.class_count()))
            << row;
      }
    }
  }
  EXPECT_GT(accepted, 100);
  const std::vector<int> numbers(9);
  const tree::memory_table small{
      "memory", {{"c", tree::numbers_of(numbers), {}, nullptr, 1}}, 0, nullptr};
  EXPECT_EQ(message_of([&] {
              tree::make_table(small, {{}, "", 1, [] { throw std::runtime_error("ended"); }});
            }),
            "ended");
}

// How many cells there are of each text. Each plain number counts once.
using cell_count = std::map<std::string, std::size_t>;

cell_count counted(const tree::distinct_cells& cells) {
  cell_count counts{{"?", cells.counts.unknown}, {"known", cells.counts.known}};
  cells.numbers.for_each([&](tree::plain_number number) { ++counts[std::to_string(number)]; });
  for (unsigned int code = 1; code <= cells.texts.size(); ++code)
    counts[std::string(cells.texts.view(code))] += cells.counts.texts[code];
  return counts;
}

cell_count counted(const texts& cells) {
  cell_count counts{{"?", 0}, {"known", 0}};
  for (std::string cell : cells) {
    const tree::plain_number number = tree::read_plain_number(as_cell(cell));
    ++counts[cell == "?" ? "?" : "known"];
    if (number != tree::no_plain_number) counts[std::to_string(number)] = 1;
    if (number == tree::no_plain_number && cell != "?") ++counts[cell];
  }
  return counts;
}

tree::distinct_cells distinct_ones(const texts& column) {
  std::string csv;
  for (const std::string& cell : column) csv += cell + "\n";
  text_source source(csv);
  tree::block_reader blocks(source);
  tree::column_cells cells(tree::column_cells::plain::all);
  for (tree::csv_block block; blocks.next(block);) {
    tree::divide_rows(block);
    cells.add(block, 0, tree::unknown_texts({}));
  }
  return tree::distinct_ones(cells, true);
}

TEST(DistinctCells, OfPartsAreThoseOfAllCells) {
  std::mt19937 random(4);
  for (int round = 0; round < 300; ++round) {
    texts whole;
    tree::distinct_cells united;
    for (const std::size_t most : {300U, 2U, 900U}) {
      const texts part = random_cells(random, random() % most);
      const tree::distinct_cells later = sent(distinct_ones(part));
      EXPECT_EQ(counted(later), counted(part)) << round;
      add_later(united, later);
      whole.insert(whole.end(), part.begin(), part.end());
    }
    EXPECT_EQ(counted(sent(united)), counted(whole)) << round;
  }
}

// Whether a cell is of a data type; of numbers, what equals no number is not.
bool fits(const std::string& type, const std::string& cell) {
  if (type != "string" && (cell == "+" || cell == "nan")) return false;
  return message_of([&] { make_domain(type, {cell}); }).empty();
}

// The scale of some texts, each brought to twenty decimals; nothing if there is none.
std::optional<tree::decimal_scale> plain_scale(const std::set<std::string>& cells) {
  std::vector<tree::wide_integer> numbers;
  for (const std::string& cell : cells) {
    tree::wide_integer number = 0;
    int decimals = 0;
    bool after_point = false;
    const char* c = cell.c_str() + cell.find_first_not_of(' ');
    const bool negative = *c == '-';
    for (c += negative || *c == '+' ? 1 : 0; *c == '.' || (*c >= '0' && *c <= '9'); ++c) {
      after_point = after_point || *c == '.';
      if (*c == '.') continue;
      number = number * 10 + (*c - '0');
      decimals += after_point ? 1 : 0;
    }
    if (*c == 'e') decimals -= std::stoi(c + 1);
    if (*c != 'e' && *c != '\0') return std::nullopt;
    if (decimals > 20) return std::nullopt;
    for (; decimals < 20; ++decimals) number *= 10;
    numbers.push_back(negative ? -number : number);
  }
  const auto [least, greatest] = std::minmax_element(numbers.begin(), numbers.end());
  tree::decimal_scale scale{*least, 0, 20};
  for (const tree::wide_integer number : numbers) {
    tree::wide_integer other = number - *least;
    while (other != 0) scale.step = std::exchange(other, scale.step % other);
  }
  if (scale.step != 0 && (*greatest - *least) / scale.step > 4294967295) return std::nullopt;
  for (; scale.decimals > 0 && scale.least % 10 == 0 && scale.step % 10 == 0; --scale.decimals) {
    scale.least /= 10;
    scale.step /= 10;
  }
  if (scale.step == 0) scale.step = 1;
  return scale;
}

// The column that has these cells in a domain.
std::unique_ptr<column> filled(std::unique_ptr<o_set> domain, const texts& cells) {
  for (const std::string& cell : cells) domain->insert(cell.c_str());
  std::string error;
  std::unique_ptr<column> result(column::NEW_COLUMN(domain.release(), "x", "discrete", error));
  for (const std::string& cell : cells) result->push_back(cell.c_str());
  return result;
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
    const std::size_t rows = round < 2 ? 70000 : 1 + draw(400);
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
      if (sort == 3 && chosen.size() < 5 && draw(9) > 0) cell = "text " + cell;
      if (sort == 4) cell = "0." + std::to_string(draw(range)) + cell;
      if (cells.size() >= first_odd && draw(50) == 0) cell = odd[draw(odd.size())];
      while (!chosen.empty() && distinct.count(cell) == 0 && !fits(chosen, cell))
        cell = odd[draw(odd.size())];
      if (draw(40) == 0) cell = "?";
      csv += cell + ",x\n";
      cells.push_back(cell);
      if (cell != "?") distinct.insert(cell);
    }
    if (distinct.empty()) continue;
    std::string type = chosen.empty() ? "string" : chosen;
    for (const std::string narrower : {"float", "uinteger", "integer"}) {
      const auto fits_it = [&](const std::string& cell) { return fits(narrower, cell); };
      if (chosen.empty() && std::all_of(distinct.begin(), distinct.end(), fits_it)) type = narrower;
    }
    tree::load_options options =
        options_of("kind x discrete" + (chosen.empty() ? "" : " type x " + chosen));
    options.threads = 1 + static_cast<unsigned int>(draw(3));
    options.input.keeps_blanks = true;
    const table loaded = load_csv(csv, options);
    const bool may_be_decimals = (chosen.empty() && type == "float") || chosen == "decimal";
    const auto scale = may_be_decimals ? plain_scale(distinct) : std::nullopt;
    const auto* const found = tree::scale_of(*loaded.columns[0]);
    ASSERT_EQ(found != nullptr, scale.has_value()) << "round " << round;
    EXPECT_TRUE(found == nullptr || (found->least == scale->least && found->step == scale->step &&
                                     found->decimals == scale->decimals))
        << "round " << round;
    auto domain =
        scale ? std::make_unique<tree::decimal_domain>(*scale, true, "?") : make_domain(type, {});
    EXPECT_TRUE(record_of(loaded.columns[0].get()) ==
                record_of(filled(std::move(domain), cells).get()))
        << "round " << round << ", " << type << (scale ? " of decimals" : "");
  }
}

// The second version is of integers: the values times 10^(decimals + 2), and texts between them.
TEST(DecimalDomain, AnswersLikeExactNumbers) {
  std::mt19937 random(3);
  const auto draw = [&](long long end) { return static_cast<long long>(random() % end); };
  for (int round = 0; round < 60; ++round) {
    const auto decimals = static_cast<unsigned int>(draw(5));
    const long long least = (draw(2000) - 1000) * (draw(2) == 0 ? 1 : 10000000000);
    const long long step = 1 + draw(3) * draw(2000);
    const auto spelled = [&](long long number) {
      const std::string digits = std::to_string(number);
      return draw(2) == 0 ? digits + "e-" + std::to_string(decimals + 2)
                          : digits + "00e-" + std::to_string(decimals + 4);
    };
    std::set<long long> drawn;
    const std::string null_text = draw(2) == 0 ? "?" : std::to_string(draw(9));
    tree::decimal_domain filled({least, step, decimals}, true, null_text);
    for (long long i = 1 + draw(30); i > 0; --i) {
      const long long value = 100 * (least + step * (draw(9) == 0 ? 4294967295 : draw(40)));
      drawn.insert(value);
      filled.insert(spelled(value).c_str());
    }
    const std::string off_scale = spelled(100 * least + 50);
    EXPECT_NE(message_of([&] { filled.insert(off_scale.c_str()); }), "");
    EXPECT_NE(message_of([&] { filled.insert(spelled(100 * (least - step)).c_str()); }), "");
    const std::unique_ptr<o_set> domain(filled.clone());
    const std::vector<long long> values(drawn.begin(), drawn.end());
    ASSERT_EQ(domain->size_of_known(), values.size());
    for (unsigned int code = 1; code <= values.size(); ++code) {
      const std::string value = domain->get_value(code);
      const std::size_t point = std::min(value.find('.'), value.size());
      EXPECT_EQ(
          std::stoll(
              value.substr(0, point) + value.substr(std::min(point + 1, value.size())) +
              std::string(decimals + 2 - (value.size() - point - (point < value.size())), '0')),
          values[code - 1]);
      EXPECT_TRUE(point == value.size() || value.back() != '0') << value;
      for (unsigned int high = code; high <= values.size(); ++high) {
        unsigned int middle = code;
        while (middle < high && 2 * values[middle] <= values[code - 1] + values[high - 1]) ++middle;
        EXPECT_EQ(domain->find_mid_code(code, high), middle);
        EXPECT_EQ(domain->find_mid(code, high), domain->get_value(middle));
      }
    }
    for (int i = 0; i < 50; ++i) {
      const long long number = values[static_cast<std::size_t>(draw(1000)) % values.size()] +
                               (draw(5) - 2) * (draw(2) == 0 ? 1 : 50 * step);
      const auto after = drawn.lower_bound(number);
      const auto place = static_cast<unsigned int>(std::distance(drawn.begin(), after));
      const bool is_there = after != drawn.end() && *after == number;
      unsigned int code = 0;
      EXPECT_EQ(domain->get_order(spelled(number).c_str(), code), is_there) << spelled(number);
      EXPECT_EQ(code, is_there ? place + 1 : 0);
      for (unsigned int c = 1; c <= values.size(); ++c) {
        const int is_greater = values[c - 1] > number ? 1 : 0;
        EXPECT_EQ(domain->leq(c, spelled(number)), is_greater);
        EXPECT_EQ(domain->leq(spelled(values[c - 1]), spelled(number)), is_greater);
      }
    }
    EXPECT_EQ(domain->leq(1, "inf") * 10 + domain->leq(1, "-1e999"), 1);
    EXPECT_EQ(domain->leq(1, "0x" + std::string(99, 'f')) * 10 + domain->leq("-0", "0e5"), 0);
    EXPECT_EQ(domain->leq(1, null_text) + domain->leq(null_text, "1"), -2);
    EXPECT_EQ(message_of([&] { domain->leq(1, "x"); }), "x: not a decimal");
  }
}

// The errors are so far apart that they are in different blocks of the file.
TEST(Table, IsRefusedForTheFirstThingThatIsWrongOnAnyThreads) {
  const texts wrong{"x,1,1,a,1",      "1,1,1,a,-1", "1,1,1,a",  //
                    "1,\"1\"1,1,a,1", "1,1,x,?,1",  "1,1,1,a,1,1"};
  for (std::size_t first = 0; first < 2 * wrong.size(); ++first) {
    const std::size_t from = first < wrong.size() ? 3000 : 33000;
    std::string csv = "x,q,y,c,w\n";
    for (std::size_t line = 2; line < from + 17000; ++line) {
      const std::size_t error = first + line / 3000 - 1;
      csv += line % 3000 == 0 && line >= from ? wrong[error % wrong.size()] : "7,\"1\",?,a,1";
      csv += '\n';
    }
    tree::load_options options = options_of("class c weights w type x integer type y integer");
    const auto load = [&](const std::string& path) { tree::load_table(path, options); };
    options.threads = 1;
    const std::string refused = refusal(csv, load);
    EXPECT_EQ(refused.rfind(":" + std::to_string(from) + ":", 0), 0) << refused;
    options.threads = 3;
    EXPECT_EQ(refusal(csv, load), refused);
  }
}

// Numbers whose products with a usual factor have the same highest bits, and texts of two such
// halves whose differences a weak step would let cancel.
TEST(SecretHash, SpreadsWhatIsChosenToCollide) {
  std::set<std::uint64_t> of_numbers;
  std::set<std::uint64_t> of_texts;
  for (std::uint64_t i = 1; i <= 10000; ++i) {
    const std::uint64_t number = (0x12345ULL << 44U | i) * 0xF1DE83E19937733DU;
    of_numbers.insert(tree::secret_hash()(number ^ number >> 32U) >> 40U);
    const std::array<std::uint64_t, 4> halves{i << 50U, i << 18U, 0, 0};
    const char* const text = reinterpret_cast<const char*>(halves.data());
    of_texts.insert(tree::secret_hash()(tree::cell_text{text, 16}) >> 40U);
  }
  EXPECT_GT(std::min(of_numbers.size(), of_texts.size()), 9000U);
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

TEST(ValueText, GivesTheCodeAgainWherePrintingDoesNot) {
  const auto numbers = make_column(
      "continuous", "float", listed("-inf,-1e-33,1e-45,1e-33,1.00001e-28,0.1,3.4028235e38,inf"));
  EXPECT_EQ(described(*numbers),
            "float continuous: -inf -1e-33 1e-45 1e-33 1.00001e-28 0.1 3.4028235e+38 inf");
}

}  // namespace
}  // namespace arbor::tests
