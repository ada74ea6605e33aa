// Information gain and split information: J. R. Quinlan, "Induction of decision trees", Machine
// Learning 1 (1986).

#include "arbor/model/measure/discrete_quality.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <type_traits>

#include "arbor/model/measure/entropy.h"

namespace arbor::impls {

namespace {

// The three weighted entropy sums that a discrete split is rated by.
struct discrete_entropies {
  unsigned int real_branches;  // values that carry the least weight of a branch
  float of_classes;
  float within_values;
  float of_branches;
};

// Adds up what is known of one value after the other.
template <class Weight>
struct value_sums {
  float min_weight;
  distribution_sums<Weight> branches;  // the unknown cases are one, too
  unsigned int real_branches = 0;
  float entropy_within = 0;

  void add(const distribution_sums<Weight>& classes) {
    if (static_cast<float>(classes.weight) >= min_weight) ++real_branches;
    entropy_within = with_term(entropy_within, classes.entropy());
    branches.weight += classes.weight;
    branches.terms = with_term(branches.terms, classes.weight_term);
  }

  discrete_entropies with_classes(const distribution_sums<Weight>& all) const {
    return {real_branches, static_cast<float>(all.entropy()), entropy_within,
            static_cast<float>(branches.entropy())};
  }
};

template <class Entropies, class Stored>
discrete_entropies entropies_by(const Entropies& entropies, const class_table<Stored>& table,
                                float min_weight) {
  using weight = typename Entropies::weight;
  const std::size_t classes = table.classes();
  const std::size_t room = distributions_at_once(classes, table.rows() - 1);
  strata::util::work_array<weight, 2 * most_together> weights(room * classes,
                                                              strata::util::first_values::any);
  std::array<distribution_sums<weight>, most_together> sums;
  const auto add_up = [&](const Stored* first, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i, first += table.width()) {
      for (std::size_t c = 0; c < classes; ++c)
        weights[c * room + i] = static_cast<weight>(first[c]);
    }
    entropies.add_up(weights.data(), {classes, room, count}, sums.data());
  };
  const auto unknown = static_cast<weight>(table.unknown_weight());
  value_sums<weight> values{min_weight, {unknown, 0, with_term(0, entropies.term_of(unknown))}};
  for (unsigned int i = 1; i < table.rows(); i += static_cast<unsigned int>(room)) {
    const std::size_t count = std::min<std::size_t>(room, table.rows() - i);
    add_up(table.row(i), count);
    for (std::size_t row = 0; row < count; ++row) values.add(sums[row]);
  }
  values.branches.weight_term = entropies.term_of(values.branches.weight);
  return values.with_classes(add_up_one(entropies, table.totals(), classes));
}

template <class Weight>
discrete_entropies entropies(const class_table<Weight>& table, float min_weight) {
  if constexpr (std::is_integral_v<Weight>) {
    const unsigned int weight =
        std::accumulate(table.totals(), table.totals() + table.classes(), table.unknown_weight());
    const unsigned long long term_count = (table.classes() + 2ULL) * table.rows();
    if (const double* terms = whole_number_terms(weight, term_count))
      return entropies_by(whole_entropies(terms), table, min_weight);
  }
  return entropies_by(real_entropies(), table, min_weight);
}

discrete_entropies entropies(const sparse_class_table& table, float min_weight) {
  const float unknown = table.unknown_weight();
  value_sums<float> values{min_weight, {unknown, 0, with_term(0, log_term(unknown))}};
  if (0 >= min_weight) values.real_branches = table.empty_rows();
  for (unsigned int i = 1; i < table.rows(); ++i) {
    const auto weights = table.weights_in_row(i);
    values.add(add_up_one(real_entropies(), weights.begin(), weights.size()));
  }
  values.branches.weight_term = log_term(values.branches.weight);
  return values.with_classes(add_up_one(real_entropies(), table.totals(), table.classes()));
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
