// The file of types: what the columns of a table are, so that the same table with other rows means
// the same.
//
//   write_types(out, table);
//   options.declared = read_types("golf.types");
//
// It has comma-separated values: a line "column,kind,type,values", and then a line for each column
// with its name, kind, data type, and each value that it may have in a cell of its own. Kind, type
// and values may be missing, and then follow from the table. Lines that begin with # are comments.
#ifndef ARBOR_TABLE_COLUMN_TYPES_H
#define ARBOR_TABLE_COLUMN_TYPES_H

#include <ostream>
#include <string>

#include "arbor/csv/declared_table.h"
#include "arbor/table/table.h"

namespace arbor::tree {

// How a file of types begins.
constexpr const char* types_beginning = "column,kind,type,values\n";

// The columns of a file of types, "-" for standard input. They may also have the kinds class and
// weights. Throws table_error, naming the file and the line.
declared_table read_types(const std::string& path);

// All columns of a table; of discrete ones and of the class all values. It can be read again.
void write_types(std::ostream& out, const table& of);

}  // namespace arbor::tree

#endif
