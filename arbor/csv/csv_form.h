// The form of a file of separated values.
#ifndef ARBOR_CSV_CSV_FORM_H
#define ARBOR_CSV_CSV_FORM_H

namespace arbor::tree {

struct csv_form {
  // Stands between two cells: any byte but a quote, CR, LF and NUL.
  char delimiter = ',';
  // Whether blanks (spaces and tabs) at the ends of a cell are part of it. In quotes they are.
  bool keeps_blanks = false;

  bool is_blank(char c) const { return !keeps_blanks && (c == ' ' || c == '\t') && c != delimiter; }
};

}  // namespace arbor::tree

#endif
