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
  unsigned int real_branches = 0;  // values that carry the least weight of a branch
  float of_classes = 0;
  float within_values = 0;
  float of_branches = 0;
};

// Makes them of the classes of all cases and of those of one value after the other.
template <class Weight>
class entropies_in_making {
 public:
  entropies_in_making(float unknown_weight, unsigned int empty_branches, float least_weight)
      : min_weight(least_weight) {
    if (0 >= min_weight) result.real_branches = empty_branches;
    add_branch(static_cast<Weight>(unknown_weight), log_term(unknown_weight));
  }

  void set_classes(const distribution_sums<Weight>& of_all) {
    result.of_classes = static_cast<float>(of_all.entropy());
  }
  void add_value(const distribution_sums<Weight>& classes) {
    if (static_cast<float>(classes.weight) >= min_weight) ++result.real_branches;
    result.within_values = with_term(result.within_values, classes.entropy());
    add_branch(classes.weight, classes.weight_term);
  }
  discrete_entropies made() {
    branches.weight_term = log_term(static_cast<float>(branches.weight));
    result.of_branches = static_cast<float>(branches.entropy());
    return result;
  }

 private:
  void add_branch(Weight weight, double weight_term) {
    branches.weight += weight;
    branches.terms = with_term(branches.terms, weight_term);
  }

  float min_weight;
  discrete_entropies result;
  distribution_sums<Weight> branches{};
};

// `count` numbers, of a type that a class_table has, as weights of another type.
template <class Weight>
const Weight* as_weights(const Weight* numbers, std::size_t /*count*/, Weight* /*room*/) {
  return numbers;
}
const float* as_weights(const unsigned int* numbers, std::size_t count, float* room) {
  std::copy_n(numbers, count, room);
  return room;
}

template <class Entropies, class Stored>
discrete_entropies entropies_by(Entropies& entropies, const class_table<Stored>& table,
                                float min_weight) {
  using weight = typename Entropies::weight;
  const std::size_t classes = table.classes();
  const std::size_t at_once = distributions_at_once(table.width(), table.rows() - 1);
  const bool converts = !std::is_same_v<weight, Stored>;
  strata::util::work_array<weight, 1> room(converts ? at_once * table.width() : 0);
  std::array<distribution_sums<weight>, most_together> sums;
  entropies_in_making<weight> making(static_cast<float>(table.unknown_weight()), 0, min_weight);
  const auto add_up = [&](const Stored* first, std::size_t count) {
    const distribution_rows rows{classes, table.width(), count};
    entropies.add_up(as_weights(first, (count - 1) * table.width() + classes, room.data()), rows,
                     sums.data());
  };
  add_up(table.totals(), 1);
  making.set_classes(sums[0]);
  for (unsigned int i = 1; i < table.rows(); i += static_cast<unsigned int>(at_once)) {
    const std::size_t count = std::min<std::size_t>(at_once, table.rows() - i);
    add_up(table.row(i), count);
    for (std::size_t row = 0; row < count; ++row) making.add_value(sums[row]);
  }
  return making.made();
}

template <class Weight>
discrete_entropies entropies(const class_table<Weight>& table, float min_weight) {
  if constexpr (std::is_integral_v<Weight>) {
    const unsigned int weight =
        std::accumulate(table.totals(), table.totals() + table.classes(), table.unknown_weight());
    const unsigned long long term_count = (table.classes() + 2ULL) * table.rows();
    if (const double* terms = whole_number_terms(weight, term_count)) {
      whole_entropies whole(terms);
      return entropies_by(whole, table, min_weight);
    }
  }
  const std::size_t at_once = distributions_at_once(table.width(), table.rows() - 1);
  real_entropies real(table.classes(), at_once * table.width());
  return entropies_by(real, table, min_weight);
}

discrete_entropies entropies(const sparse_class_table& table, float min_weight) {
  entropies_in_making<float> making(table.unknown_weight(), table.empty_rows(), min_weight);
  making.set_classes(add_up(table.totals(), table.totals() + table.classes()));
  for (unsigned int i = 1; i < table.rows(); ++i) {
    const auto weights = table.weights_in_row(i);
    making.add_value(add_up(weights.begin(), weights.end()));
  }
  return making.made();
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
