#include "arbor/csv/csv_reader.h"

#include <gmock/gmock.h>

#include "arbor/csv/table_error.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

using testing::ElementsAre;

// Each row as "line:cell|cell", an empty cell without quotes as "-"; an error as its message behind
// the path.
std::vector<std::string> rows_of(const std::string& contents) {
  const temporary_file csv(contents);
  tree::input_file file(csv.path());
  std::vector<std::string> rows;
  try {
    tree::read_csv(file, [&](const tree::csv_row& row) {
      std::string text = std::to_string(row.line()) + ":";
      for (std::size_t i = 0; i < row.size(); ++i) {
        text += (i == 0 ? "" : "|") + std::string(row.is_empty(i) ? "-" : row.text(i));
      }
      rows.push_back(text);
    });
  } catch (const tree::table_error& error) {
    rows.push_back(std::string(error.what()).substr(csv.path().size()));
  }
  return rows;
}

TEST(CsvReader, TakesQuotesSeparatorsAndNewlinesAsTheyStand) {
  EXPECT_THAT(rows_of("a,b\n1,2\n"), ElementsAre("1:a|b", "2:1|2"));
  EXPECT_THAT(rows_of("a,b\r\n1,2"), ElementsAre("1:a|b", "2:1|2"));
  EXPECT_THAT(rows_of("\xEF\xBB\xBF\"a\",b\n"), ElementsAre("1:a|b"));
  EXPECT_THAT(rows_of(" a ,\tb\n"), ElementsAre("1: a |\tb"));
  EXPECT_THAT(rows_of("\"x,\"\"y\"\"\nz\",2\n3,4\n"), ElementsAre("1:x,\"y\"\nz|2", "3:3|4"));
  EXPECT_THAT(rows_of("\"\r\n\",\"\r\"\r\n3\n"), ElementsAre("1:\r\n|\r", "4:3"));
  EXPECT_THAT(rows_of("a,b\r\n\"1\",2\r\n3,\"\n4\"\r\n5,6\r\n"),
              ElementsAre("1:a|b", "2:1|2", "3:3|\n4", "5:5|6"));
  EXPECT_THAT(rows_of(",\"\",\n,,"), ElementsAre("1:-||-", "2:-|-|-"));
  EXPECT_THAT(rows_of(""), ElementsAre());
}

TEST(CsvReader, SkipsEmptyLinesOnlyAtTheEnd) {
  EXPECT_THAT(rows_of("a\nb\n\n\r\n\n"), ElementsAre("1:a", "2:b"));
  EXPECT_THAT(rows_of("a\r\n\r\nb\r\n"),
              ElementsAre("1:a", ":2: an empty line; only the end of a table may have some"));
}

TEST(CsvReader, RefusesWhatIsNoCsvNamingTheLine) {
  const std::string inside =
      ": a quote inside a cell, or one that was not closed; quote whole cells and double the "
      "quotes in them";
  EXPECT_THAT(rows_of("a,b\n1,2\"\n"), ElementsAre("1:a|b", ":2" + inside));
  EXPECT_THAT(rows_of("\"a\nb\",c\n\"1\"2,3\n"), ElementsAre("1:a\nb|c", ":3" + inside));
  EXPECT_THAT(rows_of("a\n\"b\n\nc"), ElementsAre("1:a", ":2: a quote that is never closed"));
  EXPECT_THAT(rows_of(std::string("a\nb\0c\n", 6)),
              ElementsAre("1:a",
                          ":2: a zero byte in the text; a table is text in UTF-8 or another "
                          "encoding that has none"));
}

TEST(CsvReader, PassesOnWhatItsUserThrows) {
  for (const char* contents : {"a,b\n1,2\n", "\"a\",b\n1,2\n"}) {  // from either of its two readers
    const temporary_file csv(contents);
    tree::input_file file(csv.path());
    int rows = 0;
    EXPECT_THROW(tree::read_csv(file, [&](const tree::csv_row&) { throw ++rows; }), int);
    EXPECT_EQ(rows, 1);
  }
}

TEST(CsvReader, ReadsRowsAndCellsLargerThanItsBuffer) {
  const std::string large(200000, 'x');
  EXPECT_THAT(rows_of("a,\"" + large + "\n" + large + "\"\nb,c\n"),
              ElementsAre("1:a|" + large + "\n" + large, "3:b|c"));
}

}  // namespace
}  // namespace arbor::tests
