// The gain that a value would have on average if it told nothing about the classes.
//
//   const gain_by_chance chance(node.class_weights);
//   double gain = 0;
//   for (float weight : value_weights) gain += weight * chance.of_value(weight);
//   gain /= node_weight;
//
// Few cases of a value are seldom of all classes in the right parts, so any value seems to tell
// something, and a value of a single case all there is to tell. G. A. Miller, "Note on the bias of
// information estimates", in H. Quastler (ed.), Information Theory in Psychology (1955), 95-100;
// for the attributes of a tree: A. Dobra and J. Gehrke, "Bias correction in classification tree
// construction", ICML 2001, 90-97.
#ifndef ARBOR_TREE_GROWING_GAIN_BY_CHANCE_H
#define ARBOR_TREE_GROWING_GAIN_BY_CHANCE_H

#include <array>
#include <atomic>
#include <cmath>
#include <cstddef>
#include <vector>

#include "arbor/tree/decision_tree.h"
#include "arbor/utils/nocopy.h"

namespace arbor::tree {

class gain_by_chance : private strata::util::nocopy {
 public:
  // The weights of the classes at a node, at least one.
  explicit gain_by_chance(const std::vector<weighted_class>& class_weights);

  // The mean gain of the cases of a value, in bits per unit of weight, if their classes are drawn
  // at random from those of the node. `weight` is that of the value, above 0. It is rounded to
  // whole cases, at least one, so that most results are known from before. Several threads may ask
  // at once.
  double of_value(double weight) const {
    if (!(weight < static_cast<double>(known.size()) - 1)) return of_cases(std::round(weight));
    const std::size_t cases = weight < 1 ? 1 : static_cast<std::size_t>(weight + 0.5);
    double gain = known[cases].load(std::memory_order_relaxed);
    if (gain == 0) {
      gain = of_cases(static_cast<double>(cases));
      known[cases].store(gain, std::memory_order_relaxed);
    }
    return gain;
  }

 private:
  double of_cases(double cases) const;

  std::vector<double> class_shares;
  // By number of cases; 0 if it is not known yet. Whichever thread comes first, it is the same.
  mutable std::array<std::atomic<double>, 256> known{};
};

}  // namespace arbor::tree

#endif
