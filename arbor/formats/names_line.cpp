#include "arbor/formats/names_line.h"

namespace arbor::tree {

namespace {

constexpr character_set special_in_names(" \t.\\|");

}  // namespace

bool names_line::at_end() const {
  const std::size_t next = rest.find_first_not_of(" \t");
  return next == std::string_view::npos || rest[next] == '|';
}

char names_line::read(written_cell& to, const character_set& separators) {
  std::string& text = to.text;
  text.clear();
  to.is_literal = false;
  std::size_t end = 0;  // of the text without blanks at its end
  for (;;) {
    std::size_t plain = 0;
    while (plain < rest.size() && !separators.has(rest[plain]) &&
           !special_in_names.has(rest[plain]))
      ++plain;
    if (plain > 0) end = text.append(rest, 0, plain).size();
    rest.remove_prefix(plain);
    const char c = rest.empty() ? '|' : rest.front();
    if (c == '|') break;
    rest.remove_prefix(1);
    const bool before_blank = !rest.empty() && (rest.front() == ' ' || rest.front() == '\t');
    if (separators.has(c) || (c == '.' && (at_end() || (before_blank && !in_row)))) {
      text.resize(end);
      return c;
    }
    if (c == ' ' || c == '\t') {
      if (end > 0 && end == text.size()) text += ' ';
      continue;
    }
    if (c == '\\' && !rest.empty()) {
      to.is_literal = true;
      text += rest.front();
      rest.remove_prefix(1);
    } else {
      text += c;
    }
    end = text.size();
  }
  text.resize(end);
  return '\0';
}

}  // namespace arbor::tree
