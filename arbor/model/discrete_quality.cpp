// Information gain and split information: J. R. Quinlan, "Induction of decision trees", Machine Learning 1 (1986).

#include "arbor/model/discrete_quality.h"

#include "arbor/model/entropy.h"

namespace arbor::impls {

void rate_discrete(const class_tally& tally, float total_weight, float min_weight, column::splitting_desc& result) {
  result.set_no_split();
  const float unknown_weight = tally.unknown_weight();
  const float known_weight = total_weight - unknown_weight;
  if (known_weight == 0 || tally.rows() <= 1) return;

  std::vector<float> branch_weights(tally.rows(), 0.0F);
  branch_weights[0] = unknown_weight;
  unsigned int real_branches = 0;
  for (unsigned int i = 1; i < tally.rows(); ++i) {
    const float* row = tally.row(i);
    for (unsigned int c = 0; c < tally.classes(); ++c) branch_weights[i] += row[c];
    if (branch_weights[i] >= min_weight) ++real_branches;
  }
  if (real_branches < 2) return;

  const float class_entropy = static_cast<float>(weighted_entropy(tally.totals().data() + 1, tally.classes()));
  float value_entropy = 0;
  for (unsigned int i = 1; i < tally.rows(); ++i) {
    value_entropy =
        static_cast<float>(static_cast<double>(value_entropy) + weighted_entropy(tally.row(i), tally.classes()));
  }
  const float split_entropy = static_cast<float>(weighted_entropy(branch_weights.data(), branch_weights.size()));

  const float info = class_entropy / known_weight;
  const float value_info = value_entropy / known_weight;
  const float difference = info - value_info;
  const float all = unknown_weight + known_weight;
  const float known_fraction = known_weight / all;
  // Two denominators on purpose: the gain is scaled by what was tallied, the split information is per unit of the
  // weight that the caller gives the node.
  result.gain = difference * known_fraction;
  result.split_info = split_entropy / total_weight;
}

}  // namespace arbor::impls
