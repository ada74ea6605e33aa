#include "arbor/processes/shared_evaluation.h"

#include "arbor/processes/score_list.h"
#include "arbor/tree/classification.h"

namespace arbor::tree {

evaluation classify_shared_cases(process_group& group, const decision_tree& tree, const table& rows,
                                 const impls::w_sequence& own_cases) {
  group.enter("evaluation");
  row_classifier classify(tree, rows);
  score_list scores;
  for (const auto& [row, weight] : own_cases) {
    const std::size_t actual = rows.class_column().get_row_index(row) - 1;
    scores.add(classify(row).score(actual, static_cast<double>(weight)));
  }
  return evaluation_of_all(group, scores);
}

}  // namespace arbor::tree
