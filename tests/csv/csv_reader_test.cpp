#include "arbor/csv/csv_reader.h"

#include <gmock/gmock.h>

#include "arbor/csv/csv_cell.h"
#include "arbor/csv/table_error.h"
#include "tests/support/columns.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {
namespace {

// Each row as "line:cell|cell", an empty cell without quotes as "-"; an error as its message behind
// the path.
texts rows_of(const std::string& contents) {
  const temporary_file csv(contents);
  tree::input_file file(csv.path());
  texts rows;
  const std::string error = message_of([&] {
    tree::read_csv(file, [&](const tree::csv_row& row) {
      std::string text = std::to_string(row.line());
      for (std::size_t i = 0; i < row.size(); ++i) {
        const tree::cell_text cell = row.cell(i);
        EXPECT_EQ(cell.begin[cell.length], '\0');
        text +=
            (i == 0 ? ":" : "|") + (row.is_empty(i) ? "-" : std::string(cell.begin, cell.length));
      }
      rows.push_back(text);
    });
  });
  if (!error.empty()) rows.push_back(error.substr(csv.path().size()));
  return rows;
}

TEST(CsvReader, ReadsCellsAndNamesTheLineOfWhatIsNoCsv) {
  const std::string quote =
      ": a quote inside a cell, or one that was not closed; quote whole cells and double the "
      "quotes in them";
  const std::string zero =
      ": a zero byte in the text; a table is text in UTF-8 or another encoding that has none";
  const std::string empty = ": an empty line; only the end of a table may have some";
  const std::string large(200000, 'x');
  const std::vector<std::pair<std::string, texts>> files{
      {"", {}},
      {"a,b\n1,2\n", {"1:a|b", "2:1|2"}},
      {"a,b\r\n1,2", {"1:a|b", "2:1|2"}},
      {"a\rb,\r\n\"c\"\r\rd\n", {"1:a", "2:b|-", "3:c", ":4" + empty}},
      {"\xEF\xBB\xBF\"a\",b\n\xEF\xBB\xBF\n", {"1:a|b", "2:\xEF\xBB\xBF"}},
      {" a ,\tb\n", {"1: a |\tb"}},
      {"\"x,\"\"y\"\"\nz\",2\n3,4\n", {"1:x,\"y\"\nz|2", "3:3|4"}},
      {"\"\r\n\",\"\r\"\r\n3\n", {"1:\r\n|\r", "4:3"}},
      {"a,b\r\n\"1\",2\r\n3,\"\n4\"\r\n5,6\r\n", {"1:a|b", "2:1|2", "3:3|\n4", "5:5|6"}},
      {",\"\",\n,,", {"1:-||-", "2:-|-|-"}},
      {"a,\"" + large + "\n" + large + "\"\nb,c\n", {"1:a|" + large + "\n" + large, "3:b|c"}},
      {"a," + large + ",\"b\"\nc\n", {"1:a|" + large + "|b", "2:c"}},
      {"a\nb\n\n\r\n\n", {"1:a", "2:b"}},
      {"a\r\n\r\n\r\nb\r\n", {"1:a", ":2" + empty}},
      {"a\n\n\n\"b\"\n", {"1:a", ":2" + empty}},
      {"a,b\n1,2\"\n", {"1:a|b", ":2" + quote}},
      {"\"a\nb\",c\n\"1\"2,3\n", {"1:a\nb|c", ":3" + quote}},
      {"a\n\"b\n\nc", {"1:a", ":2: a quote that is never closed"}},
      {std::string("a\nb\0c\n", 6), {"1:a", ":2" + zero}},
  };
  for (const auto& [contents, rows] : files)
    EXPECT_EQ(rows_of(contents), rows) << contents.substr(0, 50);
}

TEST(CsvReader, ReadsLinesWhereverItsBufferEnds) {
  std::string contents;
  texts rows;
  for (int line = 1; line <= 30000; ++line) {
    const std::string number = std::to_string(line * 7919LL % 1000003);
    contents +=
        (line % 11 == 0 ? "\"" + number + "\"" : number) + (line % 3 == 0 ? ",x\r\n" : ",x\n");
    rows.push_back(std::to_string(line) + ":" + number + "|x");
  }
  EXPECT_EQ(rows_of(contents), rows);
}

TEST(CsvReader, PassesOnWhatItsUserThrows) {
  for (const char* contents : {"a,b\n1,2\n", "\"a\",b\n\"1\",2\n"}) {  // from either of its readers
    const temporary_file csv(contents);
    tree::input_file file(csv.path());
    int rows = 0;
    EXPECT_THROW(tree::read_csv(file, [&](const tree::csv_row&) { throw ++rows; }), int);
    EXPECT_EQ(rows, 1);
  }
}

TEST(CsvReader, NamesTheFileThatCannotBeRead) {
  EXPECT_EQ(message_of([] { tree::input_file("/a\tb"); }),
            "/a\\tb: cannot be opened: No such file or directory");
  tree::input_file folder("/");
  EXPECT_EQ(message_of([&] { tree::read_csv(folder, [](const tree::csv_row&) {}); }),
            "/: cannot be read: Is a directory");
}

TEST(CsvCell, IsReadAsTheTextAgain) {
  EXPECT_EQ(tree::csv_cell(" a b'"), " a b'");
  EXPECT_EQ(tree::csv_cell("\""), "\"\"\"\"");
  for (const std::string text : {"a,b", "\"a\"", "a\nb", "a\rb"})
    EXPECT_EQ(rows_of(tree::csv_cell(text) + ",\n"), texts{"1:" + text + "|-"});
}

}  // namespace
}  // namespace arbor::tests
