// What the cells of a column have in common: the narrowest data type that holds them all.
//
//   const column_survey survey = surveyed(cells);   // survey.data_type is "float"
#ifndef ARBOR_TABLE_COLUMN_SURVEY_H
#define ARBOR_TABLE_COLUMN_SURVEY_H

#include <string>
#include <vector>

#include "arbor/table/column_cells.h"

namespace arbor::tree {

struct column_survey {
  // A text that is not a number, and how often it occurs.
  struct other_text {
    std::string text;
    std::size_t cells;
  };

  std::string data_type = "null";    // null (without known values), integer, float or string
  std::vector<double> text_numbers;  // of a column of numbers: those of the dictionary's texts,
                                     // entry i that of code i + 1
  std::size_t number_cells = 0;      // how many cells are numbers, up to the last of these:
  std::vector<other_text> others;    // the first texts that are not, at most other_texts_end
};

// A few texts among numbers may be there by mistake and are worth a remark, fewer than this.
constexpr std::size_t other_texts_end = 4;

column_survey surveyed(column_cells& cells);

// Whether a text is of a data type of numbers, and which number it is then.
bool read_as(const std::string& data_type, const char* text, double& number);

}  // namespace arbor::tree

#endif
