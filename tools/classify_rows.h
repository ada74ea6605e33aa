// The classification of a table's rows, with its progress and its remarks on standard error.
#ifndef ARBOR_TOOLS_CLASSIFY_ROWS_H
#define ARBOR_TOOLS_CLASSIFY_ROWS_H

#include <ostream>
#include <string>
#include <vector>

#include "arbor/table/table_loader.h"
#include "arbor/tree/table_classification.h"
#include "tools/workplace.h"

namespace arbor::tools {

// The options that both have: the weights, the texts of the unknown value and the threads.
tree::classification_options options_from(const tree::load_options& load);

// See classify_table. `advice` ends each remark.
tree::classification_result classify_rows(const workplace& place,
                                          const std::vector<std::string>& paths,
                                          const tree::decision_tree& model,
                                          tree::classification_options options, std::ostream* rows,
                                          const std::string& advice);

}  // namespace arbor::tools

#endif
