// CSV files and tables for tests: written, read and forgotten.
#ifndef ARBOR_TESTS_SUPPORT_TABLES_H
#define ARBOR_TESTS_SUPPORT_TABLES_H

#include <sstream>
#include <string>

#include "arbor/table/table_loader.h"
#include "tests/support/columns.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {

// Options in words: "class play weights w unknown NA type size float kind size discrete".
inline tree::load_options options_of(const std::string& words) {
  std::istringstream in(words);
  tree::load_options options;
  for (std::string what, name; in >> what >> name;) {
    if (what == "class") options.class_name = name;
    if (what == "weights") options.weights_name = name;
    if (what == "unknown") options.unknown_texts.push_back(name == "''" ? "" : name);
    if (what == "type") in >> options.types[name];
    if (what == "kind") in >> options.kinds[name];
  }
  return options;
}

inline tree::table load_csv(const std::string& contents, const tree::load_options& options = {}) {
  const temporary_file csv(contents);
  return tree::load_table(csv.path(), options);
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
