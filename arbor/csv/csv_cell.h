// A text as a cell of comma-separated values.
#ifndef ARBOR_CSV_CSV_CELL_H
#define ARBOR_CSV_CSV_CELL_H

#include <string>

namespace arbor::tree {

// In quotes, with those in it doubled, if it needs them (RFC 4180).
std::string csv_cell(const std::string& text);

}  // namespace arbor::tree

#endif
