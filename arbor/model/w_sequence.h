// A node's weighted cases: for each, the row in every column of the table, and the weight (not
// negative).
//
//   arbor::impls::w_sequence cases{{0, 1.0F}, {1, 0.5F}};
#ifndef ARBOR_MODEL_W_SEQUENCE_H
#define ARBOR_MODEL_W_SEQUENCE_H

#include <vector>

#include "arbor/utils/pair.h"

namespace arbor::impls {

using w_sequence = std::vector<strata::util::pair<unsigned int, float>>;

}  // namespace arbor::impls

#endif
