// Information gain and split information: J. R. Quinlan, "Induction of decision trees", Machine
// Learning 1 (1986).

#include "arbor/model/measure/discrete_quality.h"

#include <numeric>
#include <type_traits>

#include "arbor/model/measure/entropy.h"

namespace arbor::impls {

namespace {

// The three weighted entropy sums that a discrete split is rated by.
struct discrete_entropies {
  unsigned int real_branches = 0;  // values that carry the least weight of a branch
  float of_classes = 0;
  float within_values = 0;
  float of_branches = 0;
};

template <class Weight, class Terms, class Table>
discrete_entropies entropies(const Table& table, float min_weight, const Terms& terms) {
  discrete_entropies result;
  if (0 >= min_weight) result.real_branches = table.empty_rows();
  result.of_classes =
      static_cast<float>(weighted_entropy<Weight>(terms, table.totals(), table.classes()));
  entropy_sum<Weight, Terms> branches(terms);
  branches.add(static_cast<Weight>(table.unknown_weight()));
  for (unsigned int i = 1; i < table.rows(); ++i) {
    entropy_sum<Weight, Terms> classes(terms);
    for (const auto weight : table.weights_in_row(i)) classes.add(static_cast<Weight>(weight));
    const Weight branch_weight = classes.weight();
    if (static_cast<float>(branch_weight) >= min_weight) ++result.real_branches;
    result.within_values =
        static_cast<float>(static_cast<double>(result.within_values) + classes.value());
    branches.add(branch_weight);
  }
  result.of_branches = static_cast<float>(branches.value());
  return result;
}

template <class Weight>
discrete_entropies entropies(const class_table<Weight>& table, float min_weight) {
  if constexpr (std::is_integral_v<Weight>) {
    const unsigned int weight =
        std::accumulate(table.totals(), table.totals() + table.classes(), table.unknown_weight());
    const unsigned long long term_count = (table.classes() + 2ULL) * table.rows();
    if (const double* terms = whole_number_terms(weight, term_count)) {
      return entropies<Weight>(table, min_weight, whole_terms{terms});
    }
  }
  return entropies<float>(table, min_weight, real_terms());
}

discrete_entropies entropies(const sparse_class_table& table, float min_weight) {
  return entropies<float>(table, min_weight, real_terms());
}

template <class Table>
void rate(const Table& table, float total_weight, float min_weight,
          column::splitting_desc& result) {
  result.set_no_split();
  const auto unknown_weight = static_cast<float>(table.unknown_weight());
  const float known_weight = total_weight - unknown_weight;
  if (known_weight == 0 || table.rows() <= 1) return;
  const discrete_entropies sums = entropies(table, min_weight);
  if (sums.real_branches < 2) return;

  const float info = sums.of_classes / known_weight;
  const float value_info = sums.within_values / known_weight;
  const float difference = info - value_info;
  const float all = unknown_weight + known_weight;
  const float known_fraction = known_weight / all;
  // Two denominators on purpose: the gain is scaled by what was weighed, the split information is
  // per unit of the weight that the caller gives the node.
  result.gain = difference * known_fraction;
  result.split_info = sums.of_branches / total_weight;
}

}  // namespace

template <class Weight>
void rate_discrete(const class_table<Weight>& table, float total_weight, float min_weight,
                   column::splitting_desc& result) {
  rate(table, total_weight, min_weight, result);
}

void rate_discrete(const sparse_class_table& table, float total_weight, float min_weight,
                   column::splitting_desc& result) {
  rate(table, total_weight, min_weight, result);
}

template void rate_discrete(const class_table<float>&, float, float, column::splitting_desc&);
template void rate_discrete(const class_table<unsigned int>&, float, float,
                            column::splitting_desc&);

}  // namespace arbor::impls
