#include "arbor/formats/names_line.h"

namespace arbor::tree {

bool names_line::at_end() const {
  const std::size_t next = rest.find_first_not_of(" \t");
  return next == std::string_view::npos || rest[next] == '|';
}

char names_line::read(written_cell& to, std::string_view separators) {
  to.text.clear();
  to.is_literal = false;
  std::size_t end = 0;  // of the text without blanks at its end
  char ended_by = '\0';
  while (!rest.empty() && rest.front() != '|' && ended_by == '\0') {
    char c = rest.front();
    rest.remove_prefix(1);
    const bool is_blank = c == ' ' || c == '\t';
    const bool before_blank = !rest.empty() && (rest.front() == ' ' || rest.front() == '\t');
    if (separators.find(c) != std::string_view::npos ||
        (c == '.' && (at_end() || (before_blank && !in_row)))) {
      ended_by = c;
    } else if (!is_blank) {
      if (c == '\\' && !rest.empty()) {
        to.is_literal = true;
        c = rest.front();
        rest.remove_prefix(1);
      }
      to.text += c;
      end = to.text.size();
    } else if (end > 0 && end == to.text.size()) {
      to.text += ' ';
    }
  }
  to.text.resize(end);
  return ended_by;
}

}  // namespace arbor::tree
