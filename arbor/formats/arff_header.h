// The header of an ARFF file: its attributes.
//
//   @relation golf
//   @attribute outlook {sunny, overcast, rainy}
//   @attribute temperature numeric
//   @data
#ifndef ARBOR_FORMATS_ARFF_HEADER_H
#define ARBOR_FORMATS_ARFF_HEADER_H

#include "arbor/csv/declared_table.h"
#include "arbor/formats/line_reader.h"

namespace arbor::tree {

// Reads the lines up to that of "@data", and this one. A list of values makes an attribute discrete
// and gives its values; strings and dates are discrete texts; the kind of numbers follows from
// them. Which attribute is the class the format does not say. Throws table_error.
declared_table read_arff_header(line_reader& lines);

}  // namespace arbor::tree

#endif
