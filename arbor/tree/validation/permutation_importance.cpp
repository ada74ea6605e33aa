#include "arbor/tree/validation/permutation_importance.h"

#include "arbor/tree/classification.h"
#include "arbor/tree/validation/random_order.h"

namespace arbor::tree {

std::vector<permutation_loss> permutation_losses(const decision_tree& tree, const table& rows,
                                                 const impls::w_sequence& cases,
                                                 const evaluation& quality,
                                                 std::mt19937_64& random) {
  row_classifier classify(tree, rows);
  const impls::column& classes = rows.class_column();
  std::vector<unsigned int> others;  // by case: the row whose value it gets
  for (const auto& weighted : cases) others.push_back(weighted.first);
  std::vector<permutation_loss> losses;
  for (unsigned int attribute = 0; attribute < tree.attributes.size(); ++attribute) {
    shuffle(others.begin(), others.end(), random);
    evaluation permuted;
    for (std::size_t i = 0; i < cases.size(); ++i) {
      const auto& [row, weight] = cases[i];
      permuted.add(classify.with_value_of(row, attribute, others[i])
                       .score(classes.get_row_index(row) - 1, static_cast<double>(weight)));
    }
    losses.push_back(
        {permuted.log_loss() - quality.log_loss(), quality.accuracy() - permuted.accuracy()});
  }
  return losses;
}

}  // namespace arbor::tree
