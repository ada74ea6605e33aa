// Reads NAME.names, which declares the classes and the attributes of the rows in NAME.data:
//
//   no, yes.                             | the classes
//   outlook: sunny, overcast, rainy.
//   temperature: continuous.
//   remark: ignore.
#ifndef ARBOR_FORMATS_NAMES_FILE_H
#define ARBOR_FORMATS_NAMES_FILE_H

#include "arbor/csv/byte_source.h"
#include "arbor/csv/declared_table.h"

namespace arbor::tree {

// The attributes and the class, which is the last cell of a row and has the name "class", or
// "class_2" and so on if there is such an attribute. If the file begins with the name of an
// attribute in place of the classes, that one is the class, and rows have no other cell.
//
// An entry ends with a period, which white space or a comment follows, or with its line if that
// does not end with a comma or colon. "|" begins a comment, which ends with the line; a backslash
// takes away the meaning of the character after it; white space in a name or value is one blank.
// Throws table_error, naming the line and what is accepted.
declared_table read_names_file(byte_source& file);

}  // namespace arbor::tree

#endif
