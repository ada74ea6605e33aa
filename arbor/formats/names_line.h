// Takes a line of a names file, or of the rows that belong to it, apart.
//
//   names_line line(" Iris-setosa,  Iris  virginica.  | a comment", false);
//   line.read(text, comma);  // returns ',', the text is Iris-setosa
//   line.read(text, comma);  // returns '.', the text is Iris virginica
#ifndef ARBOR_FORMATS_NAMES_LINE_H
#define ARBOR_FORMATS_NAMES_LINE_H

#include <string_view>

#include "arbor/formats/character_set.h"
#include "arbor/formats/line_converter.h"

namespace arbor::tree {

class names_line {
 public:
  // `of` must outlive this object. In a row only a period at the end of the line is one that ends a
  // text; among declarations also one that a blank follows.
  names_line(std::string_view of, bool is_row) : rest(of), in_row(is_row) {}

  // Whether nothing but blanks and a comment, from a "|" on, is left.
  bool at_end() const;

  // Reads a text, which may be empty, up to one of `separators`, a period or the end. Returns the
  // separator, '.', or '\0' for the end. Blanks around the text are skipped; several in it become
  // one. A backslash makes the text a literal and the character after it part of it.
  char read(written_cell& to, const character_set& separators);

 private:
  std::string_view rest;
  bool in_row;
};

}  // namespace arbor::tree

#endif
