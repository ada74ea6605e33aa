// How well predictions agree with the actual classes of cases.
//
//   evaluation quality;
//   quality.add(scored(actual, classify(row), weight));
//   use(quality.accuracy(), quality.log_loss());
#ifndef ARBOR_TREE_EVALUATION_H
#define ARBOR_TREE_EVALUATION_H

#include <cstddef>
#include <vector>

#include "arbor/tree/confusion_matrix.h"

namespace arbor::tree {

// What an evaluation needs to know of a case. It is calculated apart, so that threads can do that
// for several cases while one adds them up in the order of the cases, which the sums depend on.
struct scored_case {
  std::size_t actual;
  std::size_t predicted;
  double weight;
  double lost_bits;           // of its log-loss
  double squared_difference;  // of its Brier score
};

// `distribution` has the probability of each class of the tree, and the likeliest is the predicted
// class. `actual` is the entry of the actual class; an entry past the last stands for all classes
// that the tree does not have. The weight is above 0.
scored_case scored(std::size_t actual, const std::vector<double>& distribution, double weight);

// Each figure is 0 until a case has been added.
class evaluation {
 public:
  void add(const scored_case& added);

  // Adds all cases of another evaluation.
  void add(const evaluation& other);

  // Where the same cases have been added `repeats` times: the mean of these evaluations. Each case
  // has its own weight in it, so that the standard error counts it once.
  evaluation mean_of(unsigned int repeats) const;

  // All sums, and an evaluation that goes on from them: as they depend on the order of the cases,
  // another process may have to add those before. Without sums, it has no cases yet.
  std::vector<double> sums() const;
  static evaluation with_sums(const std::vector<double>& sums);

  const confusion_matrix& matrix() const { return pairs; }

  // The share (0 to 1) of the weight of the cases whose predicted class is the actual one.
  double accuracy() const;

  // The standard error of the accuracy as that of a share of independent cases. Uneven weights
  // count as (sum of weights)^2 / (sum of squared weights) cases: L. Kish, Survey Sampling (1965).
  double accuracy_error() const;

  // The mean of -log2 of the probability that the actual class was given, in bits. Probabilities
  // below 0.001 count as 0.001, so that no single case can outweigh all others.
  double log_loss() const;

  // The mean over the cases, from 0 to 2, of the sum over the classes of the squared difference
  // between the probability and 1 for the actual class, else 0: G. W. Brier, Monthly Weather Review
  // 78 (1950), 1-3.
  double brier_score() const;

  // The share of errors of a prediction that is always the commonest actual class.
  double commonest_class_error() const;

 private:
  confusion_matrix pairs;
  double squared_weights = 0;
  double lost_bits = 0;
  double squared_differences = 0;
};

// How well one class is predicted. What would divide by 0 is 0.
struct class_quality {
  std::size_t entry = 0;  // of the class
  double actual = 0;      // the weight of the cases of this class
  double predicted = 0;   // of the cases for which this class is predicted
  double right = 0;       // of the cases in both
  double precision() const { return predicted > 0 ? right / predicted : 0; }
  double recall() const { return actual > 0 ? right / actual : 0; }
  // The harmonic mean of both.
  double f1() const { return actual + predicted > 0 ? 2 * right / (actual + predicted) : 0; }
};

// The classes that occur in a matrix, in ascending order.
std::vector<class_quality> quality_by_class(const confusion_matrix& matrix);

}  // namespace arbor::tree

#endif
