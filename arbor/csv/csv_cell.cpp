#include "arbor/csv/csv_cell.h"

#include <csv.h>

namespace arbor::tree {

std::string csv_cell(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string cell(2 * text.size() + 2, '\0');
  cell.resize(csv_write(cell.data(), cell.size(), text.data(), text.size()));
  return cell;
}

}  // namespace arbor::tree
