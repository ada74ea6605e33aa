// How the numbers of a file are written, where it is not the way of programs.
#ifndef ARBOR_CSV_NUMBER_FORM_H
#define ARBOR_CSV_NUMBER_FORM_H

#include <string>
#include <vector>

namespace arbor::tree {

struct number_form {
  // '.' or ','.
  char decimal_mark = '.';
  // Whether the digits before the decimal mark may stand in groups of three: "1,234.5".
  bool grouped = false;
  // Texts before or behind a number that are no part of it, "%" or "$" for example.
  std::vector<std::string> stripped;

  bool is_usual() const { return decimal_mark == '.' && !grouped && stripped.empty(); }
};

}  // namespace arbor::tree

#endif
