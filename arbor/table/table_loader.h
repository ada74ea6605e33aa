// Reads a CSV file into a table.
//
//   load_options options;
//   options.unknown_texts = {"NA"};
//   table golf = load_table("golf.csv", options);
//
// The first row names the columns. The last column, unless it holds the weights, is the class
// unless another is named; every other column but that of the weights is an attribute. A column
// holds the narrowest data type that all its known values fit: integer, else float, else string.
// Attributes of numbers are continuous, those of texts discrete; an attribute without known values
// is ignored.
#ifndef ARBOR_TABLE_TABLE_LOADER_H
#define ARBOR_TABLE_TABLE_LOADER_H

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "arbor/table/table.h"

namespace arbor::tree {

struct load_options {
  std::string class_name;  // empty: the last column but that of the weights
  std::string
      weights_name;  // the column of the cases' weights, finite numbers from 0 up; empty: every case weighs 1

  std::vector<std::string>
      unknown_texts;  // of the unknown value, see unknown_texts.h; none: "?" and the empty cell

  std::map<std::string, std::string>
      types;                          // by column name: integer, uinteger, float, double or string
  std::string types_from = "--type";  // who chose the types, to name if a column is missing
  std::map<std::string, std::string> kinds;  // by attribute name: discrete, continuous or ignore

  std::function<void(std::size_t rows)> progress;  // told at each row how many have been read
};

// Reads the file, "-" for standard input, from its beginning to its end. A row of weight 0 is as if
// it were absent.
//
// The file is read once, and its text is not kept. Until the last row is read a cell takes four
// bytes, or eight in a column of numbers that are not all integers, and a column of texts its
// distinct texts. Then column after column is made, a column of sparse numbers with some thirty
// bytes a row for the time, and what it was made of is freed.
//
// Numbers are read in the process's locale.
//
// Throws table_error when the file cannot be read, is no such table, or does not go together with
// the options, and std::bad_alloc when memory is short.
table load_table(const std::string& path, const load_options& options);

}  // namespace arbor::tree

#endif
