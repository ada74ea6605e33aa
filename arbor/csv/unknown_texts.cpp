#include "arbor/csv/unknown_texts.h"

#include <algorithm>
#include <utility>

namespace arbor::tree {

namespace {

constexpr const char* quoted_empty = "\"\"";

}  // namespace

unknown_texts::unknown_texts(std::vector<std::string> chosen) : all(std::move(chosen)) {
  if (all.empty()) all = {"?", ""};
  sorted.assign(all.begin(), all.end());
  std::sort(sorted.begin(), sorted.end());
  for (const std::string& text : all) {
    is_first[static_cast<unsigned char>(text[0])] = true;
    if (text == quoted_empty) is_first[0] = true;
  }
}

std::string unknown_texts::declared(const std::string& text) {
  return text.empty() ? quoted_empty : text;
}

bool unknown_texts::is_empty_cell(const std::string& declared) {
  return declared.empty() || declared == quoted_empty;
}

bool unknown_texts::contain(const csv_row& row, std::size_t cell) const {
  const char* text = row.text(cell);
  if (*text == '\0' && !row.is_empty(cell)) text = quoted_empty;
  return std::binary_search(sorted.begin(), sorted.end(), std::string_view(text));
}

}  // namespace arbor::tree
