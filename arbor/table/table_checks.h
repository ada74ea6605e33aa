// What is found out about a table when all its columns have been made.
#ifndef ARBOR_TABLE_TABLE_CHECKS_H
#define ARBOR_TABLE_TABLE_CHECKS_H

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "arbor/table/column_loader.h"
#include "arbor/table/table.h"

namespace arbor::tree {

// The remarks that are made for all columns together. `rounded_cells` has the number of each
// column, see column_loader; `unknown_texts` are those that were taken for the unknown value.
std::vector<table_remark> remarks_on_columns(
    const std::vector<std::unique_ptr<column_loader>>& columns,
    const std::vector<std::uint64_t>& rounded_cells, const std::vector<std::string>& unknown_texts);

// Throws table_error if the weights add up to so much that the sums that make up a gain do not fit
// a float. `weights` is what the message calls them.
void check_total_weight(float total, const std::string& weights);

}  // namespace arbor::tree

#endif
