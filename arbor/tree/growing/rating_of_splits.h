// The ratings of a table's attributes, from splits that may have been rated elsewhere.
#ifndef ARBOR_TREE_GROWING_RATING_OF_SPLITS_H
#define ARBOR_TREE_GROWING_RATING_OF_SPLITS_H

#include <cstddef>
#include <vector>

#include "arbor/table/table.h"
#include "arbor/tree/growing/judged_split.h"
#include "arbor/tree/rating.h"

namespace arbor::tree {

// What rate_attributes returns for attributes with these splits and numbers of unknown cells, both
// in the order of the attributes.
table_rating rating_of_splits(const table& rated, const std::vector<judged_split>& splits,
                              const std::vector<std::size_t>& unknown_cells);

}  // namespace arbor::tree

#endif
