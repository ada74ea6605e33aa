// CSV files and tables for tests: written, read and forgotten.
#ifndef ARBOR_TESTS_SUPPORT_TABLES_H
#define ARBOR_TESTS_SUPPORT_TABLES_H

#include <string>

#include "arbor/csv/table_error.h"
#include "arbor/table/table_loader.h"
#include "tests/support/temporary_file.h"

namespace arbor::tests {

inline tree::table load_csv(const std::string& contents, const tree::load_options& options = {}) {
  const temporary_file csv(contents);
  return tree::load_table(csv.path(), options);
}

// What loading is refused with, without the path; empty when it is not.
inline std::string refusal(const std::string& contents, const tree::load_options& options = {}) {
  const temporary_file csv(contents);
  try {
    tree::load_table(csv.path(), options);
  } catch (const tree::table_error& error) {
    const std::string message = error.what();
    return message.rfind(csv.path(), 0) == 0 ? message.substr(csv.path().size()) : message;
  }
  return "";
}

}  // namespace arbor::tests

#endif
