#include "arbor/formats/arff_line.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "arbor/csv/shown_text.h"

namespace arbor::tree {

namespace {

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}

}  // namespace

void arff_line::skip_blanks() {
  while (!rest.empty() && is_blank(rest.front())) rest.remove_prefix(1);
}

bool arff_line::at_end() {
  skip_blanks();
  return rest.empty() || rest.front() == '%';
}

bool arff_line::take(char c) {
  skip_blanks();
  if (rest.empty() || rest.front() != c) return false;
  rest.remove_prefix(1);
  return true;
}

bool arff_line::take_separator() {
  const std::string_view before = rest;
  if (take(',')) return true;
  const std::string_view blanks = before.substr(0, before.size() - rest.size());
  return blanks.find('\t') != std::string_view::npos && !at_end() && rest.front() != '}';
}

void arff_line::read(written_cell& cell, const character_set& ends) {
  skip_blanks();
  cell.text.clear();
  cell.is_literal = !rest.empty() && (rest.front() == '\'' || rest.front() == '"');
  if (cell.is_literal) {
    read_quoted(cell.text);
    return;
  }
  std::size_t end = 0;  // of the text without blanks at its end
  for (std::size_t i = 0; i < rest.size() && !ends.has(rest[i]); ++i) {
    const bool is_first = i == 0 || is_blank(rest[i - 1]);
    if (rest[i] == '%' && is_first) break;
    if (!is_blank(rest[i])) end = i + 1;
  }
  cell.text = rest.substr(0, end);
  // Blanks stay: a tab may be a separator.
  rest.remove_prefix(end);
}

void arff_line::read_quoted(std::string& text) {
  const char quote = rest.front();
  const std::string_view whole = rest;
  rest.remove_prefix(1);
  for (;;) {
    const std::size_t size = std::min(rest.find(quote), rest.find('\\'));
    if (size == std::string_view::npos) {
      lines.fail(in_quotes(whole) +
                 " begins with a quote that is not closed on this line; quote whole texts, and "
                 "write a quote in them as \\' or \\\"");
    }
    text += rest.substr(0, size);
    const bool ends = rest[size] == quote;
    rest.remove_prefix(size + 1);
    if (ends) return;
    read_escape(text);
  }
}

// After the backslash.
void arff_line::read_escape(std::string& text) {
  const char c = rest.empty() ? '\\' : rest.front();
  if (!rest.empty()) rest.remove_prefix(1);
  if (c != 'u') {
    text += c == 'n' ? '\n' : c == 't' ? '\t' : c == 'r' ? '\r' : c;
    return;
  }
  constexpr std::size_t digits = 4;
  const std::string_view number = rest.substr(0, digits);
  unsigned int point = 0;
  const auto read = std::from_chars(number.data(), number.data() + number.size(), point, 16);
  std::array<utf8proc_uint8_t, 4> bytes{};
  const auto size = utf8proc_encode_char(static_cast<utf8proc_int32_t>(point), bytes.data());
  const bool is_whole = number.size() == digits && read.ptr == number.data() + digits;
  if (!is_whole || point == 0 || !utf8proc_codepoint_valid(static_cast<utf8proc_int32_t>(point))) {
    lines.fail(in_quotes("\\u" + std::string(number)) +
               " is no character; \\u is followed by four hexadecimal digits");
  }
  text.append(bytes.begin(), bytes.begin() + size);
  rest.remove_prefix(digits);
}

}  // namespace arbor::tree
