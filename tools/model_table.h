// Tables that are read for a saved tree: they have the data types and kinds of its columns.
#ifndef ARBOR_TOOLS_MODEL_TABLE_H
#define ARBOR_TOOLS_MODEL_TABLE_H

#include "arbor/table/table_loader.h"
#include "arbor/tree/decision_tree.h"

namespace arbor::tools {

// The options `chosen` on the command line, with the class, types and kinds of the model. The kinds
// of attributes that the model does not test stay as they were chosen.
tree::load_options options_for_model(tree::load_options chosen, const tree::decision_tree& model);

// The minimum weight that the tree was grown with. Older models do not have it; for them it is the
// one that trees are grown with unless another is chosen.
float least_weight_of(const tree::decision_tree& model);

}  // namespace arbor::tools

#endif
