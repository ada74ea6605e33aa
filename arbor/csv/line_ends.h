// Where the lines of a text end, and how many there are.
#ifndef ARBOR_CSV_LINE_ENDS_H
#define ARBOR_CSV_LINE_ENDS_H

#include <cstddef>
#include <cstring>

namespace arbor::tree {

inline bool is_line_end(char c) {
  return c == '\n' || c == '\r';
}

// The length of the byte order mark of UTF-8 at the beginning of a file, 0 if there is none.
inline std::size_t byte_order_mark(const char* bytes, std::size_t size) {
  constexpr std::size_t length = 3;
  return size >= length && std::memcmp(bytes, "\xEF\xBB\xBF", length) == 0 ? length : 0;
}

// For how many positions from 0 to `count` - 1 is(position) is true. Short runs are counted in a
// byte, so that compilers look at sixteen characters at a time.
template <class Is>
std::size_t count_of(std::size_t count, Is is) {
  constexpr std::size_t run = 240;
  std::size_t total = 0;
  std::size_t at = 0;
  for (; at + run <= count; at += run) {
    unsigned char of_run = 0;
    for (std::size_t i = at; i < at + run; ++i)
      of_run = static_cast<unsigned char>(of_run + (is(i) ? 1 : 0));
    total += of_run;
  }
  for (; at < count; ++at) total += is(at) ? 1 : 0;
  return total;
}

// How many lines end in a text: LF, CRLF and a lone CR each end one. The character after the text
// must be readable; a CR and the LF after it end no line before that LF.
inline std::size_t line_ends(const char* text, std::size_t length) {
  if (std::memchr(text, '\r', length) == nullptr)
    return count_of(length, [text](std::size_t i) { return text[i] == '\n'; });
  return count_of(length, [text](std::size_t i) {
    return static_cast<bool>(
        static_cast<int>(text[i] == '\n') |
        (static_cast<int>(text[i] == '\r') & static_cast<int>(text[i + 1] != '\n')));
  });
}

}  // namespace arbor::tree

#endif
