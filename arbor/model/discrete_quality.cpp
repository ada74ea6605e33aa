// Information gain and split information: J. R. Quinlan, "Induction of decision trees", Machine Learning 1 (1986).

#include "arbor/model/discrete_quality.h"

#include "arbor/model/entropy.h"

namespace arbor::impls {

namespace {

// The three weighted entropy sums that a discrete split is rated by.
struct discrete_entropies {
  unsigned int real_branches = 0;  // values that carry the least weight of a branch
  float of_classes = 0;
  float within_values = 0;
  float of_branches = 0;
};

// Weight is float, or unsigned int where all weights are whole numbers.
template <class Weight, class Terms>
discrete_entropies entropies(const class_tally& tally, float min_weight, const Terms& terms) {
  discrete_entropies result;
  result.of_classes = static_cast<float>(weighted_entropy<Weight>(terms, tally.totals(), tally.classes()));
  entropy_sum<Weight, Terms> branches(terms);
  branches.add(static_cast<Weight>(tally.unknown_weight()));
  for (unsigned int i = 1; i < tally.rows(); ++i) {
    entropy_sum<Weight, Terms> classes(terms);
    for (unsigned int c = 0; c < tally.classes(); ++c) classes.add(static_cast<Weight>(tally.row(i)[c]));
    const Weight branch_weight = classes.weight();
    if (static_cast<float>(branch_weight) >= min_weight) ++result.real_branches;
    result.within_values = static_cast<float>(static_cast<double>(result.within_values) + classes.value());
    branches.add(branch_weight);
  }
  result.of_branches = static_cast<float>(branches.value());
  return result;
}

}  // namespace

void rate_discrete(const class_tally& tally, float total_weight, float min_weight, column::splitting_desc& result) {
  result.set_no_split();
  const float unknown_weight = tally.unknown_weight();
  const float known_weight = total_weight - unknown_weight;
  if (known_weight == 0 || tally.rows() <= 1) return;

  const discrete_entropies sums =
      tally.whole() ? entropies<unsigned int>(tally, min_weight, whole_terms(static_cast<unsigned int>(tally.weight())))
                    : entropies<float>(tally, min_weight, real_terms());
  if (sums.real_branches < 2) return;

  const float info = sums.of_classes / known_weight;
  const float value_info = sums.within_values / known_weight;
  const float difference = info - value_info;
  const float all = unknown_weight + known_weight;
  const float known_fraction = known_weight / all;
  // Two denominators on purpose: the gain is scaled by what was tallied, the split information is per unit of the
  // weight that the caller gives the node.
  result.gain = difference * known_fraction;
  result.split_info = sums.of_branches / total_weight;
}

}  // namespace arbor::impls
