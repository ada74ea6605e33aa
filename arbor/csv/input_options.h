// How the files of a table are read.
#ifndef ARBOR_CSV_INPUT_OPTIONS_H
#define ARBOR_CSV_INPUT_OPTIONS_H

#include <optional>
#include <string>
#include <vector>

#include "arbor/csv/expansion_limit.h"
#include "arbor/csv/number_form.h"

namespace arbor::tree {

struct input_options {
  // csv, arff or names. Empty: by the ending of the file's name, and csv for any other ending.
  std::string format;
  // The texts of the unknown value, see unknown_texts.h. None: "?" and the empty cell.
  std::vector<std::string> unknown_texts;
  number_form numbers;
  // Of what compressed files and sparse rows become.
  expansion_limit limit;

  // Of CSV files alone:
  // See csv_form.h. None: found from the first lines.
  std::optional<char> delimiter;
  bool keeps_blanks = false;
  // Whether the first row has the names of the columns. Otherwise they are column_1, column_2, ...
  bool has_names = true;
  // Lines that begin with this text are skipped, unless it is empty. It has no quote and no line
  // end.
  std::string comment;
};

}  // namespace arbor::tree

#endif
