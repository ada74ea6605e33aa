// A file of another format, compressed or not: it is refused with a message, or becomes a line for
// each of its lines and rows of as many cells as it declares.
#include "arbor/csv/line_ends.h"
#include "arbor/csv/table_error.h"
#include "arbor/formats/arff_source.h"
#include "arbor/formats/names_file.h"
#include "arbor/formats/names_source.h"
#include "arbor/formats/open_file.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/byte_sources.h"
#include "tests/support/rows.h"

using namespace arbor::fuzz;
using namespace arbor::tree;
using arbor::tests::all_of;
using arbor::tests::source_of;

constexpr unsigned long long most_bytes = 1U << 20U;

static std::size_t lines_of(const std::string& text) {
  const std::size_t ends = line_ends(text.data(), text.size());
  return ends + (text.empty() || text.back() == '\n' || text.back() == '\r' ? 0 : 1);
}

// The CSV text without its empty lines has rows of this many cells.
static void check_rows(const std::string& lines, std::size_t cells) {
  std::string rows;
  for (const char c : lines) {
    if (c != '\n' || (!rows.empty() && rows.back() != '\n')) rows += c;
  }
  const memory_file file(rows);
  arbor::tests::read_rows(file.path(), [&](const csv_row& row) {
    check(row.size() == cells, "a row has a cell for each column");
  });
}

static void check_declared(const declared_table& declared) {
  for (const declared_column& column : declared.columns)
    check(!column.values || !column.values->empty(), "a list of values has some");
}

// Reads the text in parts of two sizes. `only_lines`: no escape in it stands for a line end.
template <class Source>
static void check_converted(const std::string& text, bool only_lines, std::size_t cells,
                            Source make_source) {
  std::string results[2];
  for (const std::size_t step : {5U, 4096U}) {
    std::string& result = results[step == 5 ? 0 : 1];
    const std::string refused =
        message_of<table_error>([&] { result = all_of(*make_source(), step); });
    check_one_line(refused);
    if (!refused.empty()) {
      result = refused;
      continue;
    }
    const std::size_t lines = lines_of(result);
    check(only_lines ? lines == lines_of(text) : lines >= lines_of(text),
          "a line is made of each line");
    check(result.size() <= most_bytes + 3 * text.size(), "rows are in proportion to the input");
    check_rows(result, cells);
  }
  check_same(results[0], results[1], "what is read in small parts");
}

static void check_arff(const std::string& text) {
  std::size_t cells = 0;
  const std::string refused = message_of<table_error>([&] {
    const arff_source source(source_of(text), {});
    check_declared(source.declared());
    cells = source.declared().columns.size();
  });
  check_one_line(refused);
  if (!refused.empty()) return;
  check_converted(text, text.find('\\') == std::string::npos, cells, [&] {
    return std::make_unique<arff_source>(source_of(text), expansion_limit{most_bytes, ""});
  });
}

// A names file, and rows after an empty line.
static void check_names(const std::string& text) {
  const std::size_t end = std::min(text.size(), text.find("\n\n"));
  const std::string rows = text.substr(end);
  std::size_t cells = 0;
  const std::string refused = message_of<table_error>([&] {
    const declared_table declared = read_names_file(*source_of(text.substr(0, end)));
    check_declared(declared);
    cells = declared.columns.size();
  });
  check_one_line(refused);
  if (!refused.empty()) return;
  check_converted(rows, true, cells,
                  [&] { return std::make_unique<names_source>(source_of(rows), cells); });
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const memory_file file({data, data + size});
  std::string text;
  check_one_line(message_of<table_error>([&] {
    text = all_of(*open_file(file.path(), {most_bytes, ""}));
    check(text.size() <= most_bytes, "the limit is kept");
  }));
  check_arff(text);
  check_names(text);
  return 0;
}
