// What a person should know about how the bytes of a table were understood.
#ifndef ARBOR_CSV_INPUT_REMARK_H
#define ARBOR_CSV_INPUT_REMARK_H

#include <string>

namespace arbor::tree {

struct input_remark {
  enum class matter {
    delimiter,         // another one than the comma was found
    row_numbers,       // the first column has no name, as where programs write row numbers
    final_delimiters,  // each line ends with a delimiter
    made_up_name,      // another column has no name
    numeric_names,     // all names of columns are numbers
    empty_lines,       // some lines between rows are empty
    unclassed_rows     // rows without a class were left out
  };

  matter about;
  std::string text;  // of one line
};

}  // namespace arbor::tree

#endif
