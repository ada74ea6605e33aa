// How many bytes may be made of a file, so that a small one does not fill the memory.
//
//   limit.check(given, source);  // after each part
#ifndef ARBOR_CSV_EXPANSION_LIMIT_H
#define ARBOR_CSV_EXPANSION_LIMIT_H

#include <string>

namespace arbor::tree {

class byte_source;

struct expansion_limit {
  // 0: the larger of 1 GiB and 100 times the bytes of the file that have been read. Tables that
  // people keep become 2 to 20 times as long.
  unsigned long long bytes = 0;
  // What sets another limit, for messages; empty if nothing does.
  std::string set_by;

  // Throws table_error when `given`, the bytes that were made of the file so far, are too many.
  void check(unsigned long long given, const byte_source& file) const;
};

}  // namespace arbor::tree

#endif
