// CSV files, tables and trees for tests: a file is written, read and forgotten.
#ifndef ARBOR_TESTS_SUPPORT_TABLES_H
#define ARBOR_TESTS_SUPPORT_TABLES_H

#include <sstream>
#include <string>

#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "tests/support/columns.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {

// Options in words: "class play weights w unknown NA type size float kind size discrete decimal ,
// strip $".
inline tree::load_options options_of(const std::string& words) {
  std::istringstream in(words);
  tree::load_options options;
  for (std::string what, name; in >> what >> name;) {
    if (what == "class") options.class_name = name;
    if (what == "weights") options.weights_name = name;
    if (what == "unknown") options.input.unknown_texts.push_back(name == "''" ? "" : name);
    if (what == "strip") options.input.numbers.stripped.push_back(name);
    if (what == "decimal") options.input.numbers = {name[0], true, options.input.numbers.stripped};
    if (what == "type") in >> options.types[name];
    if (what == "kind") in >> options.kinds[name];
  }
  return options;
}

inline tree::table load_csv(const std::string& contents, const tree::load_options& options = {}) {
  return tree::load_table(temporary_file(contents).path(), options);
}

// A tree that is not pruned.
inline tree::decision_tree grown(const tree::table& rows, float min_weight = 2) {
  tree::grow_options options;
  options.min_weight = min_weight;
  options.prune = false;
  return tree::grow_tree(rows, rows.cases, options);
}

// What a call of use(path of a file with these contents) is refused with, without the path.
template <class Use>
std::string refusal(const std::string& contents, Use use) {
  const temporary_file csv(contents);
  const std::string message = message_of([&] { use(csv.path()); });
  return message.rfind(csv.path(), 0) == 0 ? message.substr(csv.path().size()) : message;
}

}  // namespace arbor::tests

#endif
