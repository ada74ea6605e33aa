#include <gtest/gtest.h>

#include "arbor/csv/table_error.h"
#include "arbor/formats/arff_source.h"
#include "arbor/formats/names_file.h"
#include "arbor/formats/names_source.h"
#include "tests/support/byte_sources.h"
#include "tests/support/columns.h"

namespace arbor::tests {
namespace {

using pairs = std::vector<std::pair<std::string, std::string>>;

// "name kind type {value|value}; ..." and the class behind "->".
std::string shown(const tree::declared_table& declared) {
  std::string text;
  for (const tree::declared_column& column : declared.columns) {
    text += column.name + (column.kind.empty() ? "" : " " + column.kind) +
            (column.data_type.empty() ? "" : " " + column.data_type);
    std::string values;
    if (column.values)
      for (const std::string& value : *column.values) values += "|" + value;
    text += (values.empty() ? "" : " {" + values.substr(1) + "}") + "; ";
  }
  return text + (declared.class_name.empty() ? "" : "-> " + declared.class_name);
}

// Either format: what `read` returns, or what it is refused with.
template <class Read>
std::string result_of(Read read) {
  std::string result;
  const std::string error = message_of<tree::table_error>([&] { result = read(); });
  return error.empty() ? result : error;
}

std::string arff_header(const std::string& text) {
  return result_of([&] { return shown(tree::arff_source(source_of(text), {}).declared()); });
}

const std::string arff_begin =
    "@attribute n real\n@attribute c {a, 'b c'}\n@attribute s string\n@data\n";

// The rows behind that header, which has four lines.
std::string arff_rows(const std::string& rows, const tree::expansion_limit& limit = {}) {
  return result_of([&] {
    tree::arff_source source(source_of(arff_begin + rows), limit);
    const std::string all = all_of(source, 7);
    EXPECT_EQ(all.substr(0, 4), "\n\n\n\n");
    return all.substr(4);
  });
}

TEST(Arff, DeclaresColumns) {
  const std::string end = "\n@data\n";
  const std::string types =
      "; expected numeric, real, integer, string, date or a list of values in braces";
  const pairs headers{
      {"\xEF\xBB\xBF% of a test\r\n\r\n@RELATION 'a b'\r\n@Attribute\tx  NUMERIC % of "
       "meters\r\n@DATA\r\n",
       "x; "},
      {"@attribute 'it\\'s' Integer\r@attribute \"a\\tb\\u00fc\" real @data\r@data",
       "text:2: attribute \"a\\tb\u00FC\": \"@data\" follows its type; expected nothing"},
      {"@attribute d date 'yyyy-MM-dd'\n@attribute e DATE\n@attribute s string" + end,
       "d discrete string; e discrete string; s discrete string; "},
      {"@attribute play{yes,\t\"no, thanks\" , 'a}' , '?', ?, 50%,} % two" + end,
       "play discrete string {yes|no, thanks|a}|?|50%}; "},
      {"@attribute x {a,b" + end,
       "text:1: attribute \"x\": its values are not as in {sunny, 'light rain'}, on one line"},
      {"@attribute x {a 'b'}" + end, "x discrete string {a 'b'}; "},
      {"@attribute x {'a'b}" + end,
       "text:1: attribute \"x\": its values are not as in {sunny, 'light rain'}, on one line: "
       "\"b}\" is left"},
      {"@attribute x { }" + end, "text:1: attribute \"x\": its list of values is empty"},
      {"@attribute x rael" + end, "text:1: attribute \"x\": the type \"rael\" is not supported" +
                                      types + "; did you mean \"real\"?"},
      {"\n@attribute x relational" + end,
       "text:2: attribute \"x\": the type \"relational\" is not supported" + types +
           "; turn the rows of a relational attribute into rows of the table"},
      {"@attribute x" + end, "text:1: attribute \"x\": its type is missing" + types},
      {"@attribute\n" + end, "text:1: an attribute without a name; expected @attribute NAME TYPE"},
      {"@attribute 'x numeric" + end,
       "text:1: \"'x numeric\" begins with a quote that is not closed on this line; quote whole "
       "texts, and write a quote in them as \\' or \\\""},
      {"@attribute '\\uD800' real" + end,
       "text:1: \"\\uD800\" is no character; \\u is followed by four hexadecimal digits"},
      {"@atribute x real" + end,
       "text:1: \"@atribute x real\" is no line of an ARFF header; expected @relation, @attribute "
       "or @data; did you mean \"@attribute\"?"},
      {"@relation x\n@data\n", "text:2: @data before any @attribute"},
      {"@attribute x real\n@data 1", "text:2: \"1\" follows @data; rows begin on the next line"},
      {"@attribute x real\n1,2\n",
       "text:2: \"1,2\" is no line of an ARFF header; expected @relation, @attribute or @data"},
      {"@attribute x real\n", "text:1: an ARFF file without a line @data, which its rows follow"},
      {std::string("@attribute \0", 12),
       "text:1: a zero byte in the text; a table is text in UTF-8 or another encoding that has "
       "none"}};
  for (const auto& [text, expected] : headers) EXPECT_EQ(arff_header(text), expected) << text;
}

TEST(Arff, MakesALineOfEachLine) {
  const std::string weights =
      "; weights of rows go into an attribute of their own, and a text with braces needs quotes";
  const std::string index =
      " is no number of an attribute; they are from 0 to 2 and ascend, as in {0 VALUE, 3 VALUE}";
  const pairs rows{
      {"1,a,x\r\n\r % no row\n?, 'b c' ,\"?\" % a row\n", "1,a,x\n\n\n,b c,\"?\"\n"},
      {" 1 \t2\t x y\t\n1,\t50%,,x",
       "text:6: 4 cells, but 3 attributes are declared; a cell with a "
       "comma in it needs quotes"},
      {"1\t2\t x y\t\n1,\t50%,", "1,2,x y\n1,50%,\n"},
      {"1,'',''\n1,O\"B,'\\'\\\"\\\\\\%\\n\\u20AC\\x'",
       "1,\"\",\"\"\n1,\"O\"\"B\",\"'\"\"\\%\n\u20ACx\"\n"},
      {"{}\n{ 0 1, 2 'x, y' }\n{1 'b c'}%\n{2 ?}", "0,a,\n1,a,\"x, y\"\n0,b c,\n0,a,\n"},
      {"1,a\n", "text:5: 2 cells, but 3 attributes are declared; commas separate cells"},
      {"1 a x\n", "text:5: 1 cell, but 3 attributes are declared; commas separate cells"},
      {"1,'a'b,c\n", "text:5: \"b,c\" follows the last cell; commas separate cells"},
      {"1,a,x,{5}\n", "text:5: \"{5}\" is no cell" + weights},
      {"{0 1}, {5}\n", "text:5: \", {5}\" follows the last cell" + weights},
      {"{1 a, 1 b}", "text:5: a sparse row: \"1\"" + index},
      {"{3 a}", "text:5: a sparse row: \"3\"" + index},
      {"{-1 a}", "text:5: a sparse row: \"-1\"" + index},
      {"{0 1 'x'",
       "text:5: a sparse row without } at its end; expected {NUMBER VALUE, NUMBER VALUE}"}};
  for (const auto& [text, expected] : rows) EXPECT_EQ(arff_rows(text), expected) << text;
}

TEST(Arff, BoundsWhatSparseRowsBecome) {
  EXPECT_EQ(arff_rows("{}\n{}\n", {8, ""}), "0,a,\n0,a,\n");
  EXPECT_EQ(arff_rows("{}\n{}\n", {7, "the limit"}),
            "text: the first 74 bytes of the file become more than 7; if they are meant to, choose "
            "a higher limit with the limit");
}

std::string names_of(const std::string& text) {
  text_source source(text);
  return result_of([&] { return shown(tree::read_names_file(source)); });
}

std::string names_rows(const std::string& text) {
  return result_of([&] {
    tree::names_source source(source_of(text), 3);
    return all_of(source, 7);
  });
}

TEST(NamesFile, DeclaresColumnsAndTheClass) {
  const std::string expected_names =
      "; expected the classes, as in \"no, yes.\", and then for each attribute \"NAME: "
      "continuous.\", \"NAME: discrete.\", \"NAME: VALUE, VALUE.\" or \"NAME: ignore.\"";
  const std::string no_yes = "class string {no|yes}; -> class";
  const pairs files{
      {"| golf\r\nno,yes.   | classes\r\n\r\na: continuous.\r\nb  c :discrete 5 .\nd:ignore",
       "a continuous; b c discrete string; d ignore; " + no_yes},
      {"no,\n  yes\na:\n x ,  y  z,\nU.S., 1.5, v\\.\\,\\:\\|. b: CONTINUOUS\n.\n",
       "a discrete string {x|y z|U.S.|1.5|v.,:|}; b continuous; " + no_yes},
      {"no,yes. class: a,b. class_2: continuous.",
       "class discrete string {a|b}; class_2 continuous; class_3 string {no|yes}; -> class_3"},
      {"b.\na: ignore.\nb: \\ignore.\n", "a ignore; b discrete string {ignore}; -> b"},
      {"1. Title: Iris Plants\n\tby someone\n",
       "text:2: \"by someone\" is no attribute" + expected_names},
      {"a: continuous.",
       "text:1: the classes: \"a\" has a colon behind it, which is written as \\: "
       "in a value" +
           expected_names},
      {"no.\na: continuous.\n",
       "text:2: the file begins with \"no\", which is one class alone and "
       "no attribute" +
           expected_names},
      {"no,yes.\na: x, 9:30.\n",
       "text:2: attribute \"a\": \"9\" has a colon behind it, which is "
       "written as \\: in a value" +
           expected_names},
      {"no,yes.\na: x,,y.\n", "text:2: attribute \"a\": a value is missing" + expected_names},
      {"no,yes.\na:", "text:2: attribute \"a\": a value is missing" + expected_names},
      {"no,yes.\na: continous.\n",
       "text:2: attribute \"a\": the type \"continous\" is not "
       "supported; did you mean \"continuous\"?"},
      {"no,yes.\na: label.\n",
       "text:2: attribute \"a\": the type \"label\" is not supported" + expected_names},
      {"no,yes.\na: [ordered] x, y.\n",
       "text:2: attribute \"a\": \"[ordered] x\" is not supported" + expected_names},
      {"| nothing\n", "text:1: nothing is declared" + expected_names}};
  for (const auto& [text, expected] : files) EXPECT_EQ(names_of(text), expected) << text;
}

TEST(NamesRows, BecomeALineEach) {
  const pairs rows{{"| test\n\n1 , St.  Louis,yes.  | x\n?,\\?,\\ a\n1.,a\\,b,\"q.\n",
                    "\n\n1,St. Louis,yes\n,\"?\",\" a\"\n1.,\"a,b\",\"\"\"q\"\n"},
                   {"1,2\n",
                    "text:1: 2 cells, but the names file declares 3, the class included; commas "
                    "separate cells"},
                   {"\n1,2,3,4.",
                    "text:2: 4 cells, but the names file declares 3, the class included; a comma "
                    "in a value is written as \\,"}};
  for (const auto& [text, expected] : rows) EXPECT_EQ(names_rows(text), expected) << text;
}

TEST(Formats, ReadLinesWhereverABufferEnds) {
  for (const std::string end : {"\n", "\r\n", "\r"}) {
    std::string text, expected;
    for (std::size_t i = 0; i < 600; ++i) {
      const std::string cell(i * 7919 % 101 == 0 ? 40000 : i * 31 % 57 + 1, 'x');
      text += cell + ",2,3" + end;
      expected += cell + ",2,3\n";
    }
    EXPECT_EQ(names_rows(text), expected);
  }
}

}  // namespace
}  // namespace arbor::tests
