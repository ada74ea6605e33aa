// A CSV file as a table: it is refused with a message, or each of its cells has a code, quotes
// around cells make no difference, and a tree grown on it classifies a row as it does its texts.
#include <map>

#include "arbor/csv/table_error.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/text_classifier.h"
#include "tests/fuzz/fuzz.h"
#include "tests/support/cells.h"
#include "tests/support/rows.h"
#include "tests/support/tables.h"

using namespace arbor::fuzz;
using arbor::tests::as_cell;
using namespace arbor::tree;

// The same file with quotes around all cells but the empty ones, which quotes would make known.
static std::string quoted(const std::string& contents) {
  const memory_file file(contents);
  std::string result;
  arbor::tests::read_rows(file.path(), [&](const csv_row& row) {
    for (std::size_t cell = 0; cell < row.size(); ++cell) {
      std::string text;
      for (const char* c = row.text(cell); *c != '\0'; ++c) text.append(*c == '"' ? 2 : 1, *c);
      if (!row.is_empty(cell)) text = '"' + text + '"';
      result += text + (cell + 1 == row.size() ? '\n' : ',');
    }
  });
  return result;
}

// Every code exists and is found by its text, and a tree classifies a row as it does its texts.
static void check_rows(const table& rows) {
  grow_options options;
  options.min_weight = 1;
  options.prune = rows.cases.size() % 2 == 0;
  options.threads = 1;
  const decision_tree tree = grow_tree(rows, rows.cases, options);
  row_classifier of_row(tree, rows);
  text_classifier of_texts(tree);
  for (const auto& [row, weight] : rows.cases) {
    std::map<std::string, std::string> texts;  // by column
    for (const auto& column : rows.columns) {
      unsigned int code = column->get_row_index(row), found = 0;
      check(code < column->get_distinct() && (code > 0 || column->get_o_set()->contains_null()),
            "a code exists");
      if (code == 0) continue;
      const std::string text = texts[column->get_name()] = value_text(*column, code);
      check(column->get_o_set()->get_datatype() == "double" ||  // whose least are printed as 0
                (code_of_text(*column, text.c_str(), found) && found == code),
            text + " has the code of its row");
    }
    std::vector<cell_text> values;
    for (const auto& attribute : tree.attributes) {
      const auto text = texts.find(attribute->get_name());
      values.push_back(text == texts.end() ? unknown_cell : as_cell(text->second));
    }
    check(of_row(row).distribution == of_texts(values).distribution,
          "a row is classified as its texts");
  }
  thaw_all(tree.attributes);
  thaw(tree.class_column->get_o_set());
}

// All of a table as text, or the message that it was refused with.
static std::string loaded(const std::string& contents, const load_options& options) {
  const memory_file file(contents);
  std::string all;
  const std::string refused = message_of<table_error>([&] {
    const table rows = load_table(file.path(), options);
    if (rows.class_column().get_distinct() > 1) check_rows(rows);
    for (const auto& column : rows.columns) all += record_of(column.get());
    thaw_all(rows.columns);
    for (const auto& [row, weight] : rows.cases) all += std::to_string(weight) + "\n";
  });
  check_one_line(refused);
  return all + refused.substr(refused.rfind(file.path(), 0) == 0 ? file.path().size() : 0);
}

// The input begins with the options in words, up to a zero byte; the rest is the file.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  const std::string text(data, data + size), words = text.c_str();
  const std::string file = text.substr(std::min(size, words.size() + 1));
  const load_options options = arbor::tests::options_of(words);
  const std::string plain = loaded(file, options);
  message_of<table_error>(
      [&] { check_same(loaded(quoted(file), options), plain, "a table in quotes"); });
  return 0;
}
