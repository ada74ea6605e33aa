// Opens the files of a table, whatever their format.
//
//   csv_table file({"golf.arff"}, options, open_table_file);
#ifndef ARBOR_FORMATS_OPEN_TABLE_H
#define ARBOR_FORMATS_OPEN_TABLE_H

#include <string>

#include "arbor/csv/csv_table.h"
#include "arbor/csv/input_options.h"

namespace arbor::tree {

// The file at `path`, "-" for standard input, in the format that the options name or else the
// ending of its name. Compressed files are expanded. Throws table_error.
table_file open_table_file(const std::string& path, const input_options& options);

}  // namespace arbor::tree

#endif
