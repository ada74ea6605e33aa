// Which cells of a CSV file are unknown.
//
//   unknown_texts unknowns({"NA", ""});
//   const char* text = unknowns.known_text(row, 0);  // null for NA and for the empty cell
#ifndef ARBOR_CSV_UNKNOWN_TEXTS_H
#define ARBOR_CSV_UNKNOWN_TEXTS_H

#include <array>
#include <string>
#include <vector>

#include "arbor/csv/csv_block.h"

namespace arbor::tree {

class unknown_texts {
 public:
  // The texts that stand for the unknown value: an empty one for the empty cell, two quotes for the
  // empty cell in quotes. None at all means "?" and the empty cell without quotes.
  explicit unknown_texts(std::vector<std::string> chosen);

  bool is_unknown(const csv_row& row, std::size_t cell) const {
    return may_be_unknown(row.text(cell)) && contain(row, cell);
  }
  // Whether one of the texts begins like this one, which most cells do not.
  bool may_be_unknown(const char* text) const {
    return is_first[static_cast<unsigned char>(*text)];
  }

  // The text of a cell, null if it is unknown. Valid as long as the row.
  const char* known_text(const csv_row& row, std::size_t cell) const {
    return is_unknown(row, cell) ? nullptr : row.text(cell);
  }

  // Those in use; there is at least one.
  const std::vector<std::string>& texts() const { return all; }

  // How a text is written here: as it is, or as two quotes if it is empty, since the empty text
  // stands for the empty cell without quotes.
  static std::string declared(const std::string& text);

  // Whether a text that is written like this stands for an empty cell, with or without quotes.
  static bool is_empty_cell(const std::string& declared);

 private:
  bool contain(const csv_row& row, std::size_t cell) const;

  std::vector<std::string> all;
  std::vector<std::string> sorted;   // the same, to be searched
  std::array<bool, 256> is_first{};  // by character; NUL stands for the empty cell
};

}  // namespace arbor::tree

#endif
