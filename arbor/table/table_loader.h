// Reads a file, or several, into a table.
//
//   load_options options;
//   options.input.unknown_texts = {"NA"};
//   table golf = load_table("golf.csv", options);
//
// Files of other formats than CSV may declare their columns. The class is the last column that does
// not hold the weights or identify the rows, unless another is named; every other column but that
// of the weights is an attribute. A column holds the narrowest data type that all its known values
// fit: integer, else uinteger, else decimal (see decimal_domain.h), else float, else string.
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

#include "arbor/csv/declared_table.h"
#include "arbor/csv/input_options.h"
#include "arbor/table/table.h"

namespace arbor::tree {

struct load_options {
  input_options input;
  // Empty: the declared one, or else the last column but those of the weights and the identifiers.
  std::string class_name;
  // The column of the cases' weights: numbers from 0 up, whose sum is at most 2^120. Empty: every
  // case weighs 1.
  std::string weights_name;
  // The column that identifies the rows and is no attribute. Empty: the one that has their numbers,
  // if the first column has no name.
  std::string id_name;
  // What some of the columns are, from a file of types for example; choices by name go before this,
  // and this goes before what the table's files declare. A column may also have the kind class or
  // weights.
  declared_table declared;
  // By column name: integer, uinteger, decimal, float, double or string.
  std::map<std::string, std::string> types;
  // By attribute name: discrete, continuous or ignore.
  std::map<std::string, std::string> kinds;

  // Whether rows without a class are left out. The message that refuses one ends with the advice.
  bool skips_unknown_class = false;
  std::string unknown_class_advice;

  // The most classes that a table may have. The message that refuses more ends with the advice.
  std::size_t most_classes = std::numeric_limits<std::size_t>::max();
  std::string most_classes_advice;

  // What messages call the choices of columns, so that a person knows where each one was made.
  std::string class_from = "the class";
  std::string weights_from = "the weights";
  std::string types_from = "the type";
  std::string kinds_from = "the kind";
  std::string id_from = "the identifiers";
  std::string declared_from = "the types";

  // The number of threads, 0 for one on each core. The table is the same for any number.
  unsigned int threads = 0;
  // Called from time to time with the number of rows read so far, by the thread that loads. May be
  // empty.
  std::function<void(std::size_t rows)> progress;
};

// The names of the data types that can be chosen.
const std::vector<std::string>& data_types();

// Reads the files, "-" for standard input, from beginning to end. A row of weight 0 is as if it
// were absent.
//
// Each file is read once, and its text is not kept. Until the last row is read a cell takes four
// bytes, or eight in a column of numbers that are not all integers, and a column of texts its
// distinct texts. Then the columns are made, as many at a time as there are threads, and their
// cells are freed; a column of sparse numbers takes about thirty bytes a row meanwhile.
//
// Numbers are read in the process's locale.
//
// Throws table_error when a file cannot be read, is not such a table, or contradicts the options,
// and std::bad_alloc when memory is short.
table load_table(const std::vector<std::string>& paths, const load_options& options = {});
inline table load_table(const std::string& path, const load_options& options = {}) {
  return load_table(std::vector<std::string>{path}, options);
}

}  // namespace arbor::tree

#endif
