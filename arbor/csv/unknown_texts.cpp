#include "arbor/csv/unknown_texts.h"

#include <algorithm>
#include <utility>

#include "arbor/table/domain_text.h"

namespace arbor::tree {

namespace {

constexpr const char* quoted_empty = "\"\"";

}  // namespace

unknown_texts::unknown_texts(std::vector<std::string> chosen) : all(std::move(chosen)) {
  if (all.empty()) all = {"?", ""};
  for (const std::string& text : all) {
    is_first[static_cast<unsigned char>(text[0])] = true;
    if (text == quoted_empty) is_first[0] = true;
  }
}

std::string unknown_texts::domain_text() const {
  for (const std::string& text : all) {
    const bool means_empty_cell = text.empty() || text == quoted_empty;
    if (!means_empty_cell) return to_domain_text(text);
  }
  return "\x7F?";
}

bool unknown_texts::contain(const csv_row& row, std::size_t cell) const {
  const char* text = row.text(cell);
  if (*text == '\0' && !row.is_empty(cell)) text = quoted_empty;
  return std::any_of(all.begin(), all.end(),
                     [text](const std::string& unknown) { return unknown == text; });
}

}  // namespace arbor::tree
