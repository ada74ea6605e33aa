// A CSV file as a table: it is refused in words, or every cell of it has a code, the quotes around cells make no
// difference, and a tree grown on it says the same of a row and of its texts.
#include <algorithm>

#include "arbor/tree/classification.h"
#include "arbor/tree/csv_reader.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/table_error.h"
#include "arbor/tree/table_loader.h"
#include "tests/fuzz/fuzz.h"

using namespace arbor::fuzz;
using namespace arbor::tree;

namespace {

// Of columns named a, b and c, as those of most inputs are.
load_options options_off(input& in) {
  static const char* const types[] = {"integer", "uinteger", "float", "double", "string"};
  static const char* const kinds[] = {"discrete", "continuous", "ignore"};
  static const char* const unknowns[] = {"?", "", "\"\"", "NA", "0", "\x7F\xFF"};
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

// A table whose columns' domains let go of their values.
struct loaded_table {
  loaded_table(const memory_file& file, const load_options& options) : rows(load_table(file.path(), options)) {}
  ~loaded_table() {
    for (const auto& column : rows.columns) thaw(column->get_o_set());
  }

  table rows;
};

// The same file with quotes around all cells but the empty ones, which quotes would make known.
std::string quoted(const memory_file& file) {
  std::string result;
  input_file source(file.path());
  read_csv(source, [&](const csv_row& row) {
    for (std::size_t cell = 0; cell < row.size(); ++cell) {
      if (cell > 0) result += ',';
      if (row.is_empty(cell)) continue;
      result += '"';
      for (const char* c = row.text(cell); *c != '\0'; ++c) result += std::string(*c == '"' ? 2 : 1, *c);
      result += '"';
    }
    result += '\n';
  });
  return result;
}

// All of a table as text, or what it was refused with.
std::string told(const memory_file& file, const load_options& options) {
  std::string all;
  const std::string refused = refusal<table_error>([&] {
    const loaded_table loaded(file, options);
    for (const auto& column : loaded.rows.columns) {
      const byte_list bytes = record_of(column.get());
      all.append(bytes.begin(), bytes.end());
    }
    for (const auto& [row, weight] : loaded.rows.cases) all += std::to_string(row) + ":" + std::to_string(weight) + "\n";
    for (const std::string& remark : loaded.rows.remarks) all += remark + "\n";
  });
  check(refused.find('\n') == std::string::npos, "a message is one line");
  const std::size_t name = refused.find(file.path());
  return all + (name == std::string::npos ? refused : refused.substr(name + file.path().size()));
}

void check_codes(const table& rows) {
  for (const auto& column : rows.columns) {
    for (const auto& weighted : rows.cases) {
      const unsigned int code = column->get_row_index(weighted.first);
      check(code < column->get_distinct(), "a code is one of the domain's");
      unsigned int found = 0;
      if (code == 0) {
        check(column->get_o_set()->contains_null(), "a domain knows of its unknown values");
      } else if (column->get_o_set()->get_datatype() != "double") {  // whose least ones are printed as 0
        const std::string text = value_text(*column, code);
        check(code_of_text(*column, text.c_str(), found) && found == code, text + " has the code of its row");
      }
    }
  }
}

void check_tree(const table& rows) {
  if (rows.class_column().get_range().second == 0) return;
  grow_options options;
  options.min_weight = 1;
  options.prune = rows.cases.size() % 2 == 0;
  options.threads = 1;
  const decision_tree tree = grow_tree(rows, rows.cases, options);
  row_classifier of_row(tree, rows);
  text_classifier of_texts(tree);
  for (const auto& weighted : rows.cases) {
    std::vector<std::string> texts;
    std::vector<const char*> values;
    for (const auto& attribute : tree.attributes) {
      const auto same_name = [&](const auto& c) { return c->get_name() == attribute->get_name(); };
      const auto& column = **std::find_if(rows.columns.begin(), rows.columns.end(), same_name);
      const unsigned int code = column.get_row_index(weighted.first);
      texts.push_back(code == 0 ? "" : value_text(column, code));
      values.push_back(code == 0 ? nullptr : "known");
    }
    for (std::size_t i = 0; i < texts.size(); ++i) values[i] = values[i] == nullptr ? nullptr : texts[i].c_str();
    check(of_row(weighted.first) == of_texts(values), "a tree says the same of a row and of its texts");
  }
  for (const auto& attribute : tree.attributes) thaw(attribute->get_o_set());
  thaw(tree.class_column->get_o_set());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  input in(data, size);
  const load_options options = options_off(in);
  const memory_file file(in.rest());
  std::string with_quotes;
  if (refusal<table_error>([&] { with_quotes = quoted(file); }).empty()) {
    check_same(told(memory_file(with_quotes), options), told(file, options), "a table with quotes");
  }
  refusal<table_error>([&] {
    const loaded_table loaded(file, options);
    check_codes(loaded.rows);
    check_tree(loaded.rows);
  });
  return 0;
}
