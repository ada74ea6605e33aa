// Opens a file of text, which may be compressed with gzip or zstd.
//
//   const std::unique_ptr<byte_source> file = open_file("golf.csv.gz", {});
//   while (std::size_t count = file->read(buffer, sizeof buffer)) ...
#ifndef ARBOR_FORMATS_OPEN_FILE_H
#define ARBOR_FORMATS_OPEN_FILE_H

#include <memory>
#include <string>

#include "arbor/csv/expansion_limit.h"

namespace arbor::tree {

// The text of the file at `path`; "-" is standard input. Its first bytes say whether it is
// compressed, not its name; a pipe will do. `limit` is for the text of a compressed file, which is
// read ahead on a thread of its own. Throws table_error when the file cannot be opened, and for
// what is known to be no text: archives, workbooks and the like, and UTF-16.
std::unique_ptr<byte_source> open_file(const std::string& path, const expansion_limit& limit);

}  // namespace arbor::tree

#endif
