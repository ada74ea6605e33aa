// Reads comma-separated values (RFC 4180) row by row.
//
//   input_file file("golf.csv");
//   read_csv(file, [&](const csv_row& row) { use(row.text(0), row.line()); });
#ifndef ARBOR_CSV_CSV_READER_H
#define ARBOR_CSV_CSV_READER_H

#include <functional>

#include "arbor/csv/csv_row.h"
#include "arbor/csv/input_file.h"

namespace arbor::tree {

// Hands every row of `file`, from its current position to its end, to `use`, the header row like
// any other.
//
// Quoted cells may contain separators, quotes and newlines; rows end in LF or CRLF; a UTF-8 byte
// order mark at the beginning is skipped, and so are empty lines at the end. Throws table_error for
// a quote inside an unquoted cell or after a quoted one, a quote that is never closed, a zero byte,
// and an empty line between rows. What `use` throws is passed on.
void read_csv(input_file& file, const std::function<void(const csv_row&)>& use);

}  // namespace arbor::tree

#endif
