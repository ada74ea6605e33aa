#include <gtest/gtest.h>

#include "arbor/csv/found_delimiter.h"
#include "arbor/csv/message_text.h"
#include "arbor/csv/row_search.h"
#include "arbor/csv/shown_text.h"
#include "tests/support/rows.h"
#include "tests/support/tables.h"

namespace arbor::tests {
namespace {

// Reads a file in parts: each range of so many bytes has the rows that begin in it.
template <class Use>
void read_rows_in_parts(const std::string& path, std::size_t size, std::size_t range, Use use,
                        const tree::csv_form& form) {
  tree::file_place part{0, 0, false};
  tree::file_place next{0, 1, false};
  const auto read_part = [&](std::uint64_t end) {
    tree::input_file file(path, part.byte, end);
    read_rows(file, use, form, part.line);
  };
  for (std::uint64_t end = range; end < size; end += range) {
    const tree::range_counts counts = tree::counts_in(path, next.byte, end);
    next = {end, next.line + counts.line_ends, next.in_quotes != (counts.quotes % 2 == 1)};
    if (const auto row = tree::next_row(path, next, std::min(end + range, size), form)) {
      read_part(row->byte);
      part = *row;
    }
  }
  read_part(size);
}

// Each row as "line:cell|cell", an empty cell without quotes as "-"; an error as its message behind
// the path. `range`: see above.
texts rows_of(const std::string& contents, const tree::csv_form& form = {}, std::size_t range = 0) {
  texts rows;
  const auto add = [&](const tree::csv_row& row) {
    std::string text;
    for (std::size_t i = 0; i < row.size(); ++i) {
      const tree::cell_text cell = row.cell(i);
      EXPECT_EQ(cell.begin[cell.length], '\0');
      text += (i == 0 ? ":" : "|") + (row.is_empty(i) ? "-" : std::string(cell.begin, cell.length));
    }
    rows.push_back(std::to_string(row.line()) + text);
  };
  const std::string error = refusal(contents, [&](const std::string& path) {
    if (range == 0) return read_rows(path, add, form);
    read_rows_in_parts(path, contents.size(), range, add, form);
  });
  if (!error.empty()) rows.push_back(error);
  return rows;
}

TEST(CsvReader, ReadsCellsAndNamesTheLineOfWhatIsNoCsv) {
  const std::string quote =
      ": a quote inside a cell, or one that was not closed; quote whole cells and double the "
      "quotes in them";
  const std::string zero =
      ": a zero byte in the text; a table is text in UTF-8 or another encoding that has none";
  const std::string large(200000, 'x');
  const std::vector<std::pair<std::string, texts>> files{
      {"", {}},
      {"a,b\n1,2\n", {"1:a|b", "2:1|2"}},
      {"a,b\r\n1,2", {"1:a|b", "2:1|2"}},
      {"a\rb,\r\n\"c\"\r\rd\n", {"1:a", "2:b|-", "3:c", "5:d"}},
      {"a\r \n\"b\"\n", {"1:a", "3:b"}},
      {"\xEF\xBB\xBF\"a\",b\n\xEF\xBB\xBF\n", {"1:a|b", "2:\xEF\xBB\xBF"}},
      {" a ,\tb c \r\n , \n\n\t\nd\t", {"1:a|b c", "2:-|-", "5:d"}},
      {"\" a\" ,\"b \"\n\"\" , \"c\nd\"\n  e,  f", {"1: a|b ", "2:|c\nd", "4:e|f"}},
      {" " + large + " ,b", {"1:" + large + "|b"}},
      {"\"x,\"\"y\"\"\nz\",2\n3,4\n", {"1:x,\"y\"\nz|2", "3:3|4"}},
      {"\"\r\n\",\"\r\"\r\n3\n", {"1:\r\n|\r", "4:3"}},
      {"a,b\r\n\"1\",2\r\n3,\"\n4\"\r\n5,6\r\n", {"1:a|b", "2:1|2", "3:3|\n4", "5:5|6"}},
      {",\"\",\n,,", {"1:-||-", "2:-|-|-"}},
      {"a,\"" + large + "\n" + large + "\"\nb,c\n", {"1:a|" + large + "\n" + large, "3:b|c"}},
      {"a," + large + ",\"b\"\nc\n", {"1:a|" + large + "|b", "2:c"}},
      {"a\nb\n\n\r\n\n", {"1:a", "2:b"}},
      {"a\r\n\r\n\r\nb\r\n", {"1:a", "4:b"}},
      {"a\n\n\n\"b\"\n", {"1:a", "4:b"}},
      {"a,b\n1,2\"\n", {"1:a|b", ":2" + quote}},
      {"\"a\nb\",c\n\"1\"2,3\n", {"1:a\nb|c", ":3" + quote}},
      {"a\n\"b\n\nc", {"1:a", ":2: a quote that is never closed"}},
      {std::string("a\nb\0c\n", 6), {"1:a", ":2" + zero}}};
  for (const auto& [contents, rows] : files) {
    EXPECT_EQ(rows_of(contents), rows);
    const std::size_t least = contents.size() > large.size() ? 9999 : 1;
    for (std::size_t range = least; range < contents.size(); range += least)
      EXPECT_EQ(rows_of(contents, {}, range), rows) << "in parts of " << range << " bytes";
  }
}

TEST(CsvReader, ReadsAnyDelimiterWithOrWithoutBlanks) {
  EXPECT_EQ(rows_of("a, ;\t\"b;c\"\n", {';', false}), (texts{"1:a,|b;c"}));
  EXPECT_EQ(rows_of("a\t\t b \n\"c\td\"\t\t\n", {'\t', false}), (texts{"1:a|-|b", "2:c\td|-|-"}));
  EXPECT_EQ(rows_of("\"a\" b\t \"c d\"\n", {' ', false}), (texts{"1:a|b|c d"}));
  EXPECT_EQ(rows_of(" a ,\tb\n  \n\"c\", d", {',', true}), (texts{"1: a |\tb", "2:  ", "3:c| d"}));
}

TEST(CsvReader, ReadsLinesWhereverItsBufferEnds) {
  std::string contents;
  texts rows;
  for (int line = 1; line <= 30000; ++line) {
    const std::string number = std::to_string(line * 7919LL % 1000003);
    contents += line % 11 == 0 ? "\"" + number + "\"" : line % 7 == 0 ? number + " " : number;
    contents += line % 3 == 0 ? ",x\r\n" : line % 5 == 0 ? ", x \n" : ",x\n";
    rows.push_back(std::to_string(line) + ":" + number + "|x");
  }
  EXPECT_EQ(rows_of(contents), rows);
  EXPECT_EQ(rows_of(contents, {}, 70001), rows);
}

TEST(CsvReader, FindsTheDelimiterOfTheFirstLines) {
  const std::vector<std::pair<std::string, char>> beginnings{
      {"", ','},
      {"a", ','},
      {"a;b\n", ';'},
      {"a;b\n1,5;2,5\n", ';'},
      {"a;b;c\n1,5;2;3,5\n", ';'},
      {"a,b\n\"1;2;3\",x\n\"1;2;3\",y\n", ','},
      {"a|b,c|d\n1|2|3\n", '|'},
      {"a\tb c\n1\t2 3\n1\t2 3\n", '\t'},
      {"\"a\" \"b\"\n\"1\" 5 \"x y\"\n", ' '},
      {"first name\nann lee\n", ','},
      {"a b c\n1 2 3\n", ' '},
      {"a,b\n1;2\n", ','},
      {"\n\n\"x;\n\";b,c\n1;2\n", ';'},
  };
  for (const auto& [beginning, delimiter] : beginnings)
    EXPECT_EQ(tree::found_delimiter(beginning, {}), delimiter) << beginning;
  tree::input_options no_names;
  no_names.has_names = false;
  EXPECT_EQ(tree::found_delimiter("1,5;2,5\n1,2;3,4\n", no_names), ';');
  EXPECT_EQ(tree::found_delimiter("1,5,2\n1,2,3\n", no_names), ',');
}

TEST(ShownText, HasNothingThatATerminalObeys) {
  const std::vector<std::pair<std::string, std::string>> cases{
      {"a\"\n\r\t\x1F\x7F\u00FC", "a\"\\n\\r\\t\\x1F\\x7F\u00FC"},
      {std::string("a\0b", 3), "a\\x00b"},
      {"\u0080\u009F\u00A0", "\\u0080\\u009F\u00A0"},  // control characters, a blank
      {"\u2027\u2028\u2029\u202A\u202E\u202F", "\u2027\\u2028\\u2029\\u202A\\u202E\u202F"},
      {"\u2065\u2066\u2069\u206A", "\u2065\\u2066\\u2069\u206A"},
      {"\u061C\u200D\u200E\u200F", "\\u061C\u200D\\u200E\\u200F"},
      {"\x9B\xFF\xC3", "\\x9B\\xFF\\xC3"},                    // not UTF-8
      {"\xC0\x80\xED\xA0\x80", "\\xC0\\x80\\xED\\xA0\\x80"},  // nor too long, nor half
  };
  for (const auto& [text, shown] : cases) {
    EXPECT_EQ(tree::printable(text), shown);
    EXPECT_EQ(tree::printable(shown), shown);
  }
}

TEST(ShownText, IsNoWiderThanItMayBe) {
  const std::string x(59, 'x');
  EXPECT_EQ(tree::in_quotes(x + "\""), "\"" + x + "\\\"\"");
  EXPECT_EQ(tree::in_quotes(x + "yz"), "\"" + x + "y...\"");
  EXPECT_EQ(tree::in_quotes(x + "\u00FC"), "\"" + x + "\u00FC\"");
  EXPECT_EQ(tree::in_quotes(x + "\u7A81"), "\"" + x + "...\"");  // takes two columns
  EXPECT_EQ(tree::shown("abcdefghij", 10), "abcdefghij");
  EXPECT_EQ(tree::shown("abcdefghijk", 10), "abcd...ijk");
  EXPECT_EQ(tree::shown("\u7A81\u7A81\u7A81\u7A81\u7A81\u7A81", 10), "\u7A81\u7A81...\u7A81");
  EXPECT_EQ(tree::shown("abcde\u0301fghiju\u0308k", 10), "abcd...ju\u0308k");
  EXPECT_EQ(tree::display_width("u\u0308\u7A81\u00FC"), 4);
  EXPECT_EQ(tree::in_quotes("\u00FC" + std::string(100, '\x80'), 20).substr(0, 7), "\"\u00FC\\x80");
  std::string accents = "a";
  for (int i = 0; i < 100000; ++i) accents += "\u0301";
  for (const std::string& text : {accents, std::string(1000000, 'x'), std::string(1000000, '\xFF')})
    EXPECT_LT(tree::shown(text, 20).size() + tree::in_quotes(text).size(), 1000);
  EXPECT_EQ(tree::in_quotes(accents).find("\\x"), std::string::npos);  // no character is divided
}

TEST(MessageText, CountsAndQuotes) {
  EXPECT_EQ(tree::counted(1, "leaf", "leaves") + tree::counted(0, "row"), "1 leaf0 rows");
  EXPECT_EQ(tree::shell_word("it's"), "'it'\\''s'");
}

TEST(MessageText, ProposesTheNearestName) {
  const texts nearest =
      listed("Siez,size,szi,,klasse,class,abcclass,,weihgth,weight,xeight,weight");
  for (std::size_t i = 0; i < nearest.size(); i += 2) {
    const std::string question = "; did you mean \"" + nearest[i + 1] + "\"?";
    EXPECT_EQ(tree::did_you_mean(nearest[i], {"class", "weight", "size", "sizs"}),
              nearest[i + 1].empty() ? "" : question);
  }
  const std::string x(64, 'x');  // longer ones would take too long
  EXPECT_NE(tree::did_you_mean("Y" + x.substr(1), {x + "x", x}), "");
  EXPECT_EQ(tree::did_you_mean(x + "x", {x}), "");
}

}  // namespace
}  // namespace arbor::tests
