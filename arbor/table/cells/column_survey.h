// What the cells of a column have in common: the narrowest data type that holds them all.
//
//   const column_survey survey = surveyed(cells, cells.counts(), {});
//   use(survey.data_type);   // "decimal"
#ifndef ARBOR_TABLE_CELLS_COLUMN_SURVEY_H
#define ARBOR_TABLE_CELLS_COLUMN_SURVEY_H

#include <memory>
#include <string>
#include <vector>

#include "arbor/csv/number_form.h"
#include "arbor/table/cells/column_cells.h"
#include "arbor/table/decimal_domain.h"

namespace arbor::tree {

struct column_survey {
  // A text that is not a number, and how often it occurs.
  struct other_text {
    std::string text;
    std::size_t cells;
  };

  // null (without known values), integer, uinteger, decimal, float or string.
  std::string data_type = "null";
  std::unique_ptr<decimal_scale> scale;  // of a column of decimals
  std::vector<double> text_numbers;      // of a column of numbers: those of the dictionary's texts,
                                         // entry i that of code i + 1
  std::size_t number_cells = 0;          // how many cells are numbers, up to the last of these:
  std::vector<other_text> others;        // the first texts that are not, at most other_texts_end
};

// A few texts among numbers may be there by mistake and are worth a remark, fewer than this.
constexpr std::size_t other_texts_end = 4;

// `counts` are those of the cells, or of a larger number of rows that have the same distinct ones.
// If all cells are numbers that are written in this form, their texts are replaced by the usual
// ones.
column_survey surveyed(column_cells& cells, const cell_counts& counts, const number_form& form);

// Replaces the texts of numbers in this form by the usual ones. Returns the number of each, entry i
// that of code i + 1.
std::vector<double> usual_numbers(column_cells& cells, const number_form& form);

// Whether a text in this form is of a data type of numbers.
bool is_of_type(const std::string& data_type, const number_form& form, const char* text);

}  // namespace arbor::tree

#endif
