// Takes a line of an ARFF file apart.
//
//   arff_line line("@attribute 'body mass' numeric % in kg", lines);
//   line.read(word, character_set(" \t"));  // @attribute
//   line.read(word, character_set(" \t"));  // body mass, a literal
#ifndef ARBOR_FORMATS_ARFF_LINE_H
#define ARBOR_FORMATS_ARFF_LINE_H

#include <string>
#include <string_view>

#include "arbor/formats/character_set.h"
#include "arbor/formats/line_converter.h"

namespace arbor::tree {

// Blanks and tabs between what is read are skipped, and a comment: from a "%" at the beginning or
// after a blank up to the end.
class arff_line {
 public:
  // `of` is the last line of `from`, whose fail() is called for what is wrong. Both must outlive
  // this object.
  arff_line(std::string_view of, const line_reader& from) : rest(of), lines(from) {}

  // Whether nothing else is left.
  bool at_end();

  // Skips `c` if it comes next; returns whether it did.
  bool take(char c);

  // Skips what stands between two cells: a comma, or a tab with something after it. Returns false
  // if nothing of the kind comes next.
  bool take_separator();

  // Reads a text in single or double quotes, in which a backslash begins an escape, or one without
  // quotes up to one of the characters in `ends`, the comment or the end.
  void read(written_cell& cell, const character_set& ends);

  // What is left, for messages.
  std::string_view remaining() const { return rest; }

 private:
  void skip_blanks();
  void read_quoted(std::string& text);
  void read_escape(std::string& text);

  std::string_view rest;
  const line_reader& lines;
};

}  // namespace arbor::tree

#endif
