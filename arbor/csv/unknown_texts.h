// Which cells of a CSV file are unknown.
#ifndef ARBOR_CSV_UNKNOWN_TEXTS_H
#define ARBOR_CSV_UNKNOWN_TEXTS_H

#include <array>
#include <string>
#include <vector>

#include "arbor/csv/csv_reader.h"

namespace arbor::tree {

class unknown_texts {
 public:
  // The texts that stand for the unknown value; an empty one for the empty cell, two quotes for the
  // quoted empty one. None at all: "?" and the empty cell without quotes.
  explicit unknown_texts(std::vector<std::string> chosen);

  bool is_unknown(const csv_row& row, std::size_t cell) const {
    // Most cells begin like none of the texts.
    return is_first[static_cast<unsigned char>(*row.text(cell))] && contain(row, cell);
  }

  // The text of a cell, null if it is unknown. Valid as long as the row.
  const char* known_text(const csv_row& row, std::size_t cell) const {
    return is_unknown(row, cell) ? nullptr : row.text(cell);
  }

  // The text for the unknown value in a domain of texts (see domain_text.h): one of those in use,
  // or, when that might be a known text too, one that no cell becomes.
  std::string domain_text() const;

  // Those in use; there is at least one.
  const std::vector<std::string>& texts() const { return all; }

 private:
  bool contain(const csv_row& row, std::size_t cell) const;

  std::vector<std::string> all;
  std::array<bool, 256> is_first{};  // by character; NUL stands for the empty cell
};

}  // namespace arbor::tree

#endif
