// A CSV file as a table: it is refused with a message, or each of its cells has a code, quotes
// around cells make no difference, and a tree grown on it classifies a row as it does its texts.
#include <map>

#include "arbor/csv/csv_reader.h"
#include "arbor/csv/table_error.h"
#include "arbor/table/table_loader.h"
#include "arbor/tree/classification.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/text_classifier.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using namespace arbor::tree;

// For columns named a, b and c, as those of most inputs are.
static load_options options_from(input& in) {
  const arbor::tests::texts types{"integer", "uinteger", "float", "double", "string"},
      kinds{"discrete", "continuous", "ignore"}, unknowns{"?", "", "\"\"", "NA", "0", "\x7F\xFF"};
  load_options options;
  for (const char* name : {"a", "b", "c"}) {
    const unsigned int choice = in.byte();
    if (choice % 8 < 5) options.types[name] = types[choice % 8];
    if (choice / 8 % 8 < 3) options.kinds[name] = kinds[choice / 8 % 8];
    if (choice / 64 == 3) options.weights_name = name;
  }
  const unsigned int chosen = in.byte();
  for (unsigned int i = 0; i < 6; ++i) {
    if ((chosen >> i & 1U) != 0) options.unknown_texts.emplace_back(unknowns[i]);
  }
  if (chosen >> 6U == 1) options.class_name = "a";
  return options;
}

// The same file with quotes around all cells but the empty ones, which quotes would make known.
static std::string quoted(const memory_file& file) {
  std::string result;
  input_file source(file.path());
  read_csv(source, [&](const csv_row& row) {
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
  const row_classifier of_row(tree, rows);
  text_classifier of_texts(tree);
  for (const auto& weighted : rows.cases) {
    std::map<std::string, std::string> texts;  // by column
    for (const auto& column : rows.columns) {
      unsigned int code = column->get_row_index(weighted.first), found = 0;
      check(code < column->get_distinct() && (code > 0 || column->get_o_set()->contains_null()),
            "a code exists");
      if (code == 0) continue;
      const std::string text = texts[column->get_name()] = value_text(*column, code);
      check(column->get_o_set()->get_datatype() == "double" ||  // whose least are printed as 0
                (code_of_text(*column, text.c_str(), found) && found == code),
            text + " has the code of its row");
    }
    std::vector<const char*> values;
    for (const auto& attribute : tree.attributes) {
      const auto text = texts.find(attribute->get_name());
      values.push_back(text == texts.end() ? nullptr : text->second.c_str());
    }
    check(of_row(weighted.first) == of_texts(values), "a row is classified as its texts");
  }
  for (const auto& attribute : tree.attributes) thaw(attribute->get_o_set());
  thaw(tree.class_column->get_o_set());
}

// All of a table as text, or the message that it was refused with.
static std::string loaded(const memory_file& file, const load_options& options) {
  std::string all;
  const std::string refused = refusal<table_error>([&] {
    const table rows = load_table(file.path(), options);
    if (rows.class_column().get_distinct() > 1) check_rows(rows);
    for (const auto& column : rows.columns) {
      all += record_of(column.get());
      thaw(column->get_o_set());
    }
    for (const auto& [row, weight] : rows.cases) all += std::to_string(weight) + "\n";
  });
  check(refused.find('\n') == std::string::npos, "a message is one line");
  const std::size_t name = refused.find(file.path());
  return all + (name == std::string::npos ? refused : refused.substr(name + file.path().size()));
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  input in{data, size};
  const load_options options = options_from(in);
  const memory_file file(in.rest());
  const std::string plain = loaded(file, options);
  refusal<table_error>(
      [&] { check_same(loaded(memory_file(quoted(file)), options), plain, "a table in quotes"); });
  return 0;
}
