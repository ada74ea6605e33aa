// What is wrong with a table or with what was asked of it, said to a person.
#ifndef ARBOR_CSV_TABLE_ERROR_H
#define ARBOR_CSV_TABLE_ERROR_H

#include <stdexcept>

namespace arbor::tree {

// what() is one line that names the file, and the line and column where there is one, quotes the
// text, and says what would do.
class table_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace arbor::tree

#endif
