#include "arbor/tree/judged_split.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <vector>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/class_table.h"
#include "arbor/model/measure/discrete_quality.h"
#include "arbor/model/measure/entropy.h"

namespace arbor::tree {

namespace {

using impls::class_table;
using impls::column;

// The gain in bits that a case of a value has on average if the classes of the value's cases are
// drawn at random from those of the node.
class gain_by_chance {
 public:
  template <class Weight>
  explicit gain_by_chance(const class_table<Weight>& table) {
    const auto sum = static_cast<double>(
        std::accumulate(table.totals(), table.totals() + table.classes(), Weight()));
    for (unsigned int c = 0; c < table.classes(); ++c) {
      const auto weight = static_cast<double>(table.totals()[c]);
      if (weight > 0) class_shares.push_back(weight / sum);
    }
    known.fill(not_yet);
  }

  // `weight` is that of the value. It is rounded to whole cases, at least one, so that few weights
  // need logarithms.
  double of_value(double weight) {
    const double cases = std::max(1.0, std::floor(weight + 0.5));
    if (cases >= static_cast<double>(known.size())) return of_cases(cases);
    double& gain = known[static_cast<std::size_t>(cases)];
    if (gain == not_yet) gain = of_cases(cases);
    return gain;
  }

 private:
  // A case of a class with the share p finds 1 + x cases of its class among the n of its value; x
  // is binomial with the mean (n - 1) p. Its gain is log2((1 + x) / (n p)), of which this is the
  // mean by the Taylor series about that of x, up to the square.
  double of_cases(double cases) const {
    const double others = cases - 1;
    double gain = 0;
    for (const double p : class_shares) {
      const double of_class = 1 + others * p;
      const double variance = others * p * (1 - p);
      const double bits = static_cast<double>(impls::binary_log(of_class / (cases * p))) -
                          variance / (2 * of_class * of_class * natural_log_of_2);
      gain += p * bits;
    }
    return gain;
  }

  static constexpr double natural_log_of_2 = 0.6931471805599453;
  static constexpr double not_yet = -1e9;

  std::vector<double> class_shares;  // of the classes that occur
  std::array<double, 256> known;     // by number of cases
};

template <class Weight>
float judged_gain(const class_table<Weight>& table, float gain) {
  constexpr double charged = 1.5;
  gain_by_chance chance(table);
  double by_chance = 0;
  double weight = 0;
  unsigned int values = 0;
  for (unsigned int i = 1; i < table.rows(); ++i) {
    const auto of_value = static_cast<double>(
        std::accumulate(table.row(i), table.row(i) + table.classes(), Weight()));
    if (!(of_value > 0)) continue;
    by_chance += of_value * chance.of_value(of_value);
    weight += of_value;
    ++values;
  }
  if (values <= 2) return gain;
  // As the gain, this is per unit of all weight.
  by_chance /= weight + static_cast<double>(table.unknown_weight());
  return static_cast<float>(static_cast<double>(gain) -
                            charged * by_chance * (values - 2) / (values - 1));
}

void rate(const column& attribute, column& class_column, float total_weight,
          const impls::w_sequence& cases, code_range range, float min_weight,
          column::splitting_desc& rating) {
  // A measure that may copy the cases does not reorder them.
  auto& unchanged = const_cast<impls::w_sequence&>(cases);
  attribute.quality_measure(&class_column, total_weight, &unchanged, range, min_weight, nullptr,
                            rating, true);
}

}  // namespace

double judged_split::gain_ratio() const {
  return static_cast<double>(rating.gain) / static_cast<double>(rating.split_info);
}

judged_split rate_split(const column& attribute, column& class_column, float total_weight,
                        const impls::w_sequence& cases, code_range range, float min_weight) {
  judged_split result;
  const bool judged = attribute.is_discrete() && range.second - range.first > 2;
  const bool measured = !judged || !impls::is_library_column(attribute);
  if (measured) {
    rate(attribute, class_column, total_weight, cases, range, min_weight, result.rating);
    result.judged_gain = result.rating.gain;
    if (!judged || !(result.rating.gain > 0)) return result;
  }
  impls::with_codes(attribute, [&](auto code_of) {
    impls::with_class_table(code_of, class_column, cases, range, [&](const auto& table) {
      // The gain is rated and judged by one table: reading the cases takes most of the time.
      if (!measured) {
        result.rating.branches = attribute.get_o_set()->size_of_known();
        result.rating.split_column = const_cast<column*>(&attribute);  // handed out, not changed
        impls::rate_discrete(table, total_weight, min_weight, result.rating);
      }
      result.judged_gain =
          result.rating.gain > 0 ? judged_gain(table, result.rating.gain) : result.rating.gain;
    });
  });
  return result;
}

}  // namespace arbor::tree
