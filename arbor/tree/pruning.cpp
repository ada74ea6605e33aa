#include "arbor/tree/pruning.h"

#include <cmath>
#include <initializer_list>

namespace arbor::tree {

namespace {

// The continued fraction of the incomplete beta function (NIST Digital Library of Mathematical
// Functions, 8.17.22), by the method of W. J. Lentz, Applied Optics 15 (1976), 668-671.
double beta_fraction(double a, double b, double x) {
  constexpr double tiny = 1e-300;  // stands in for 0 as a divisor
  constexpr double precision = 1e-14;
  constexpr int most_steps = 10000;
  const auto not_zero = [](double value) { return std::fabs(value) < tiny ? tiny : value; };
  double c = 1;
  double d = 1 / not_zero(1 - (a + b) * x / (a + 1));
  double fraction = d;
  for (int m = 1; m < most_steps; ++m) {
    double change = 1;
    const double even = m * (b - m) * x / ((a + 2 * m - 1) * (a + 2 * m));
    const double odd = -(a + m) * (a + b + m) * x / ((a + 2 * m) * (a + 2 * m + 1));
    for (const double coefficient : {even, odd}) {
      d = 1 / not_zero(1 + coefficient * d);
      c = not_zero(1 + coefficient / c);
      change = c * d;
      fraction *= change;
    }
    if (std::fabs(change - 1) < precision) break;
  }
  return fraction;
}

// For x above 0. std::lgamma also writes the sign to a global variable, which several threads that
// prune trees side by side must not do.
double log_gamma(double x) {
  int sign = 0;
  return ::lgamma_r(x, &sign);
}

// The regularised incomplete beta function I_x(a, b).
double incomplete_beta(double a, double b, double x) {
  const double factor = std::exp(log_gamma(a + b) - log_gamma(a) - log_gamma(b) + a * std::log(x) +
                                 b * std::log1p(-x));
  // Above the mean, the fraction of the complement converges faster.
  if (x > (a + 1) / (a + b + 2)) return 1 - factor * beta_fraction(b, a, 1 - x) / b;
  return factor * beta_fraction(a, b, x) / a;
}

}  // namespace

double binomial_upper_limit(double errors, double cases, double confidence) {
  if (errors >= cases) return 1;
  if (errors <= 0) return 1 - std::pow(confidence, 1 / cases);
  double low = errors / cases;
  double high = 1;
  for (int halvings = 0; halvings < 40; ++halvings) {
    const double middle = (low + high) / 2;
    const double up_to_errors = incomplete_beta(cases - errors, errors + 1, 1 - middle);
    (up_to_errors > confidence ? low : high) = middle;
  }
  return low;
}

namespace {

double errors_as_leaf(const leaf_weight& leaf, float confidence) {
  return leaf.cases *
         binomial_upper_limit(leaf.errors, leaf.cases, static_cast<double>(confidence));
}

// The errors to expect of a test's children. Their weight falls short of that of the test where
// cases of which little was left have been dropped; the errors are scaled to the whole weight.
double errors_as_test(const std::vector<tree_node>& nodes, const tree_node& test,
                      const std::vector<double>& expected_errors) {
  double errors = 0;
  double cases_below = 0;
  for (std::size_t child = test.first_child; child < test.first_child + test.child_count; ++child) {
    errors += expected_errors[child];
    cases_below += weigh(nodes[child]).cases;
  }
  if (cases_below > 0) errors *= weigh(test).cases / cases_below;
  return errors;
}

}  // namespace

double prune(std::vector<tree_node>& nodes, float confidence,
             const std::map<std::size_t, double>& pruned_before) {
  std::vector<std::size_t> parents_first{0};
  for (std::size_t i = 0; i < parents_first.size(); ++i) {
    if (pruned_before.count(parents_first[i]) > 0) continue;
    const tree_node& node = nodes[parents_first[i]];
    for (unsigned int child = 0; child < node.child_count; ++child)
      parents_first.push_back(node.first_child + child);
  }
  std::vector<double> expected_errors(nodes.size(), 0.0);
  // Every subtree is finished before its test is judged.
  for (auto i = parents_first.rbegin(); i != parents_first.rend(); ++i) {
    double& expected = expected_errors[*i];
    if (const auto known = pruned_before.find(*i); known != pruned_before.end()) {
      expected = known->second;
      continue;
    }
    tree_node& node = nodes[*i];
    expected = errors_as_leaf(weigh(node), confidence);
    if (node.is_leaf()) continue;
    const double as_test = errors_as_test(nodes, node, expected_errors);
    if (expected <= as_test) {
      node.attribute = tree_node::no_attribute;
      node.child_count = 0;
      node.split.reset();
    } else {
      expected = as_test;
    }
  }
  return expected_errors.front();
}

}  // namespace arbor::tree
