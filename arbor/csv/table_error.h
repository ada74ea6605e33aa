// The exception for what is wrong with a table or a model file, or with what was asked of it. Its
// message is for people.
#ifndef ARBOR_CSV_TABLE_ERROR_H
#define ARBOR_CSV_TABLE_ERROR_H

#include <stdexcept>

namespace arbor::tree {

// what() is one line. It names the file, and the line and the column where there is one, quotes the
// text, and names what would be accepted.
class table_error : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace arbor::tree

#endif
