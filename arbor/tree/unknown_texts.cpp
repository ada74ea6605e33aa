#include "arbor/tree/unknown_texts.h"

#include <algorithm>
#include <utility>

#include "arbor/tree/domain_text.h"

namespace arbor::tree {

unknown_texts::unknown_texts(std::vector<std::string> chosen) : all(std::move(chosen)) {
  if (all.empty()) all = {"?", ""};
  empty_is_unknown = contain("");
  quoted_empty_is_unknown = contain("\"\"");
}

const char* unknown_texts::known_text(const csv_row& row, std::size_t cell) const {
  const char* text = row.text(cell);
  const bool unknown = *text != '\0' ? contain(text) : row.is_empty(cell) ? empty_is_unknown : quoted_empty_is_unknown;
  return unknown ? nullptr : text;
}

std::string unknown_texts::domain_text() const {
  for (const std::string& text : all) {
    const bool means_empty_cell = text.empty() || text == "\"\"";
    if (!means_empty_cell) return to_domain_text(text);
  }
  return "\x7F?";
}

bool unknown_texts::contain(const char* text) const {
  return std::any_of(all.begin(), all.end(), [text](const std::string& unknown) { return unknown == text; });
}

}  // namespace arbor::tree
