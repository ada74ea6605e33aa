// The cells of a column while its table is read, when its data type is not yet known.
//
//   column_cells cells(column_cells::plain::all);
//   for each block of rows: cells.add(block, cell, unknowns);
//   for (unsigned int code = 1; code <= cells.texts().size(); ++code) ...
//
// They are kept in the first of three forms that holds them all, so that they take little more
// memory than their codes will:
//
//   integers  plain integers, four bytes a row
//   numbers   plain numbers or, for other texts, their codes in the dictionary, eight bytes a row
//   texts     codes in the dictionary, four bytes a row
//
// In each form the text of every cell is still known.
#ifndef ARBOR_TABLE_CELLS_COLUMN_CELLS_H
#define ARBOR_TABLE_CELLS_COLUMN_CELLS_H

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "arbor/csv/csv_block.h"
#include "arbor/csv/unknown_texts.h"
#include "arbor/table/cells/cell_blocks.h"
#include "arbor/table/cells/key_ranks.h"
#include "arbor/table/cells/plain_number.h"
#include "arbor/table/cells/text_dictionary.h"

namespace arbor::tree {

struct distinct_cells;

// How many cells of a column there are.
struct cell_counts {
  std::size_t known = 0;
  std::size_t unknown = 0;
  // Of each text of the dictionary, by code; entry 0 has no meaning. Empty if there are none.
  std::vector<std::size_t> texts;

  // Of those that are kept as plain numbers.
  std::size_t numbers() const;
};

class column_cells {
 public:
  enum class form { integers, numbers, texts };
  // Which cells may be kept as numbers: all plain numbers, or integers alone. Where the point of
  // the process's locale is not ".", `all` means integers, since a text with a "." is no number
  // then.
  enum class plain { none, integers, all };

  explicit column_cells(plain may_be_kept);

  // Each distinct cell of a table as a row, and then the rows of a part of the table. The first
  // zero of the table comes first: before the numbers are the texts that it has before a zero.
  column_cells(distinct_cells whole, column_cells part);

  // Adds a cell of each row.
  void add(const csv_block& rows, std::size_t cell, const unknown_texts& unknowns);

  // The same for one cell that is not in a file: the unknown value, a text that is known, a plain
  // number as its text, and, of cells that are kept as texts, one that is in the dictionary.
  void add_unknown();
  void add_text(cell_text text);
  void add_number(plain_number number);
  void add_code(unsigned int code) { narrow.push_back(code); }

  // Adds a text that no cell may have to the dictionary, unless it is there; of cells that are kept
  // as texts. Returns its code.
  unsigned int declare(const std::string& text) { return dictionary.code_of(text); }

  form kept_as() const { return kept; }
  // The dictionary: all texts, or those that are not kept as numbers.
  const text_dictionary& texts() const { return dictionary; }
  cell_counts counts();
  std::size_t unknown_cells() const { return unknown; }
  std::size_t rows() const { return narrow.size() + wide.size(); }
  bool has_known() const { return narrow.size() + wide.size() > unknown; }
  // Whether some of the plain numbers are not integers of 32 bits.
  bool has_fractions() const { return fractions; }

  // The number as which a text may be kept; no_plain_number if there is none.
  plain_number number_to_keep(cell_text text) const;

  // Converts the cells to this form, unless they already have it or a later one.
  void keep_as_numbers();
  void keep_as_texts();

  // Replaces each text of the dictionary by replacement(text), which may be the same for several.
  void replace_texts(const std::function<std::string(const char* text)>& replacement);

  // Replaces each text's code in the dictionary by entry [code] of `codes`, of cells that are kept
  // as texts. Entry 0 is the code of the unknown value.
  void recode_texts(const std::vector<unsigned int>& codes);

  // By row: of integers the keys, of texts the codes, 0 for the unknown value.
  cell_blocks<std::uint32_t>& keys() { return narrow; }
  // By row, in the form of numbers; see below.
  cell_blocks<plain_number>& numbers() { return wide; }

  // An entry of `numbers`: unknown, the code of a text, or else a plain number.
  static bool is_unknown(plain_number entry) { return entry == no_plain_number; }
  static bool is_text(plain_number entry) { return entry >= first_text; }
  static unsigned int text_code(plain_number entry) {
    return static_cast<unsigned int>((entry - first_text) / 32);
  }
  static plain_number text_entry(unsigned int code) {
    return first_text + static_cast<plain_number>(code) * 32;
  }

 private:
  static constexpr plain_number first_text = static_cast<plain_number>(plain_digits_end) * 32;

  std::size_t add_regular(const csv_block& rows, std::size_t cell, std::size_t row,
                          const unknown_texts& unknowns);
  void add_distinct(const distinct_cells& whole);
  void add_part(column_cells& part);

  form kept;
  plain keepable;
  bool fractions = false;
  std::size_t unknown = 0;
  text_dictionary dictionary;
  cell_blocks<std::uint32_t> narrow;
  cell_blocks<plain_number> wide;
};

}  // namespace arbor::tree

#endif
