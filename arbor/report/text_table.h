// Words and columns of reports.
#ifndef ARBOR_REPORT_TEXT_TABLE_H
#define ARBOR_REPORT_TEXT_TABLE_H

#include <string>
#include <vector>

namespace arbor::tree {

// The rows, a line each, with their cells under each other. `sides` tells for each column whether
// it is flush left ('l') or right ('r').
std::string aligned(const std::vector<std::vector<std::string>>& rows, const std::string& sides);

}  // namespace arbor::tree

#endif
