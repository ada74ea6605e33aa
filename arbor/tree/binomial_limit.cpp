#include "arbor/tree/binomial_limit.h"

#include <cmath>
#include <initializer_list>

namespace arbor::tree {

namespace {

// The continued fraction of the incomplete beta function (NIST Digital Library of Mathematical
// Functions, 8.17.22), by the method of W. J. Lentz, Applied Optics 15 (1976), 668-671.
double beta_fraction(double a, double b, double x) {
  constexpr double tiny = 1e-300;  // in the place of 0, by which nothing can be divided
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

// The regularised incomplete beta function I_x(a, b).
double incomplete_beta(double a, double b, double x) {
  const double factor = std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) +
                                 a * std::log(x) + b * std::log1p(-x));
  // On the other side of its mean the fraction of the complement converges faster.
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

}  // namespace arbor::tree
