#include "arbor/csv/csv_cell.h"

#include <csv.h>

#include <algorithm>

namespace arbor::tree {

std::string csv_cell(const std::string& text) {
  std::string cell;
  append_csv_cell(text, cell);
  return cell;
}

void append_csv_cell(std::string_view text, std::string& to) {
  const bool is_plain = std::none_of(text.begin(), text.end(), [](char c) {
    return c == ',' || c == '"' || c == '\r' || c == '\n';
  });
  if (is_plain) {
    to += text;
    return;
  }
  const std::size_t begin = to.size();
  to.resize(begin + 2 * text.size() + 2);
  to.resize(begin + csv_write(&to[begin], to.size() - begin, text.data(), text.size()));
}

}  // namespace arbor::tree
