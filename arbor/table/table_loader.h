// Reads a CSV file into a table.
//
//   load_options options;
//   options.unknown_texts = {"NA"};
//   table golf = load_table("golf.csv", options);
//
// The first row names the columns. The class is the last column that does not hold the weights,
// unless another is named; every other column but that of the weights is an attribute. A column
// holds the narrowest data type that all its known values fit: integer, else uinteger, else decimal
// (see decimal_domain.h), else float, else string.
// Attributes of numbers are continuous, those of texts discrete; an attribute without known values
// is ignored.
#ifndef ARBOR_TABLE_TABLE_LOADER_H
#define ARBOR_TABLE_TABLE_LOADER_H

#include <cstddef>
#include <functional>
#include <limits>
#include <map>
#include <string>
#include <vector>

#include "arbor/table/table.h"

namespace arbor::tree {

struct load_options {
  // Empty: the last column but that of the weights.
  std::string class_name;
  // The column of the cases' weights: numbers from 0 up, whose sum is at most 2^120. Empty: every
  // case weighs 1.
  std::string weights_name;
  // The texts of the unknown value, see unknown_texts.h. None: "?" and the empty cell.
  std::vector<std::string> unknown_texts;
  // How numbers are written in the file.
  number_form numbers;
  // By column name: integer, uinteger, decimal, float, double or string.
  std::map<std::string, std::string> types;
  // By attribute name: discrete, continuous or ignore.
  std::map<std::string, std::string> kinds;

  // The most classes that a table may have. The message that refuses more ends with the advice.
  std::size_t most_classes = std::numeric_limits<std::size_t>::max();
  std::string most_classes_advice;

  // What messages call the choices of columns, so that a person knows where each one was made.
  std::string class_from = "the class";
  std::string weights_from = "the weights";
  std::string types_from = "the type";
  std::string kinds_from = "the kind";

  // The number of threads, 0 for one on each core. The table is the same for any number.
  unsigned int threads = 0;
  // Called from time to time with the number of rows read so far, by the thread that loads. May be
  // empty.
  std::function<void(std::size_t rows)> progress;
};

// Reads the file, "-" for standard input, from its beginning to its end. A row of weight 0 is as if
// it were absent.
//
// The file is read once, and its text is not kept. Until the last row is read a cell takes four
// bytes, or eight in a column of numbers that are not all integers, and a column of texts its
// distinct texts. Then the columns are made, as many at a time as there are threads, and their
// cells are freed; a column of sparse numbers takes about thirty bytes a row meanwhile.
//
// Numbers are read in the process's locale.
//
// Throws table_error when the file cannot be read, is not such a table, or contradicts the options,
// and std::bad_alloc when memory is short.
table load_table(const std::string& path, const load_options& options);

}  // namespace arbor::tree

#endif
