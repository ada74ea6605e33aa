// How a text that others have written is shown to a person, on a terminal above all.
//
//   printable("a\nb")         // a\nb, on one line
//   shown(name, 60)           // the same in at most 60 columns: the beginning, "..." and the end
//   in_quotes("8O")           // "8O", with its double quotes
//
// What a terminal might obey, or a reader be misled by, is escaped: line feed, carriage return and
// tab as \n, \r and \t; other control characters, which ISO 6429 has up to U+009F, line and
// paragraph separators, and the characters that turn the direction of writing, as \xNN below U+0080
// and else as \uNNNN; each byte that is not part of a character of UTF-8 as \xNN. The result has no
// such character left, so it may be escaped again.
#ifndef ARBOR_CSV_SHOWN_TEXT_H
#define ARBOR_CSV_SHOWN_TEXT_H

#include <cstddef>
#include <string>
#include <string_view>

namespace arbor::tree {

// The whole text, on one line.
std::string printable(std::string_view text);

// The printable text if it is at most `width` (5 or more) columns wide. Of a wider one the
// beginning and the end, with "..." between them: names that differ often do so at one of their
// ends. Takes time and memory in proportion to the width, however long the text is.
std::string shown(std::string_view text, std::size_t width);

// The printable text in double quotes, each quote in it after a backslash. A text of more than
// `width` columns is cut off.
std::string in_quotes(std::string_view text, std::size_t width = 60);

// How many columns of a terminal a printable text takes: those of East Asia take two, accents that
// combine with the character before them none.
std::size_t display_width(std::string_view text);

// The first character of a text that is not empty.
struct utf8_character {
  char32_t point = 0;      // 0 if it is no character of UTF-8
  std::size_t length = 1;  // in bytes
  bool valid = false;
  // Whether it can be shown as it is; see above.
  bool is_printable() const;
};
utf8_character first_character(std::string_view text);

}  // namespace arbor::tree

#endif
