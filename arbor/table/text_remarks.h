// Remarks on columns of texts that would be of numbers but for a few texts or the form of their
// numbers, and on rounded numbers. Each is said once for the whole table.
#ifndef ARBOR_TABLE_TEXT_REMARKS_H
#define ARBOR_TABLE_TEXT_REMARKS_H

#include <string>
#include <vector>

#include "arbor/csv/number_form.h"
#include "arbor/table/cells/column_survey.h"
#include "arbor/table/table.h"

namespace arbor::tree {

// A column of texts.
struct near_numbers {
  std::string column;
  // Either the few texts that are no numbers, or a text of the column and the forms in which all of
  // them are numbers (see unusual_forms).
  std::vector<column_survey::other_text> others;
  std::string sample;
  std::vector<number_form> forms;
};

// On the columns of floats, at least one, of which this many cells are rounded.
table_remark remark_on_rounded(const std::vector<std::string>& columns, std::size_t cells);

// `unknown_texts` are those that were taken for the unknown value.
std::vector<table_remark> remarks_on_texts(const std::vector<near_numbers>& columns,
                                           const std::vector<std::string>& unknown_texts);

}  // namespace arbor::tree

#endif
