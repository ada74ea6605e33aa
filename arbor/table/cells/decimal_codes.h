// Turns the cells of a column of decimals into the steps of a scale and the codes of its rows.
//
//   const std::optional<decimal_scale> scale = common_scale(cells);
//   if (scale) code_steps(cells, *scale, domain);
#ifndef ARBOR_TABLE_CELLS_DECIMAL_CODES_H
#define ARBOR_TABLE_CELLS_DECIMAL_CODES_H

#include <optional>

#include "arbor/table/cells/column_cells.h"
#include "arbor/table/decimal_domain.h"

namespace arbor::tree {

// The scale of numbers: its first step is the least of them, its step the greatest that they allow,
// and it has no more decimals than they need. So it depends on the set of numbers alone, not on how
// they are written. None if one of them is not in decimal digits or has too many, or if there are
// too many steps between the least and the greatest.
//
// All cells are texts of numbers.
std::optional<decimal_scale> common_scale(column_cells& cells);

// Inserts the distinct numbers, or rather their steps on the scale, into a domain of the data type
// "uinteger" that has no values yet, and leaves the codes that they have there, by row, in
// `cells.keys()`. The domain is not queried, so that destroying it still destroys its values.
//
// All cells are texts of numbers that are steps of the scale.
void code_steps(column_cells& cells, const decimal_scale& scale, impls::o_set& domain);

}  // namespace arbor::tree

#endif
