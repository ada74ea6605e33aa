// How the numbers of a file are written, where it is not the way of programs.
//
//   const number_form form{',', true, {"€"}};
//   std::string storage;
//   usual_text(form, "1.234,5 €", storage);   // "1234.5"
#ifndef ARBOR_CSV_NUMBER_FORM_H
#define ARBOR_CSV_NUMBER_FORM_H

#include <string>
#include <vector>

namespace arbor::tree {

struct number_form {
  // '.' or ','.
  char decimal_mark = '.';
  // Whether the digits before the decimal mark may stand in groups of three: "1,234.5".
  bool grouped = false;
  // Texts before or behind a number that are no part of it, "%" or "$" for example.
  std::vector<std::string> stripped;

  bool is_usual() const { return decimal_mark == '.' && !grouped && stripped.empty(); }
};

// The usual way to write the number that `text` is in this form: digits, perhaps after a sign and
// with a "." and an exponent. Null if it is no number in this form. Of the usual form itself every
// text is returned unchanged.
//
// The first group of digits has one to three, each other one three. Between them stands the other
// one of the marks "." and ",", a blank (also one that does not break), or an apostrophe, the same
// in all of the number. Blanks may surround the number and the texts that are stripped.
//
// The result is `text` or is in `storage`, until that changes.
const char* usual_text(const number_form& form, const char* text, std::string& storage);

}  // namespace arbor::tree

#endif
