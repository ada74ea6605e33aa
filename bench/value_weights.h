// The gain that a measure should find at a node, by its definition, in doubles.
#ifndef ARBOR_BENCH_VALUE_WEIGHTS_H
#define ARBOR_BENCH_VALUE_WEIGHTS_H

#include <cstddef>
#include <vector>

namespace arbor::bench {

class value_weights {
 public:
  // `table` holds weights by code, then by class, `stride` of them.
  value_weights(const std::vector<float>& table, std::size_t stride);

  std::size_t count() const { return values.size(); }  // of those that occur
  double gain_by_value() const;
  double gain_at_threshold() const;  // at the best one

 private:
  using class_weights = std::vector<double>;
  static double entropy(const class_weights& weights);  // times the weight

  std::vector<class_weights> values;
  class_weights all;
};

}  // namespace arbor::bench

#endif
