// What may be true of many cases, given what is seen in a few.
#ifndef ARBOR_TREE_BINOMIAL_LIMIT_H
#define ARBOR_TREE_BINOMIAL_LIMIT_H

namespace arbor::tree {

// The share of errors, 0 to 1, with which no more than `errors` among `cases` come about with the
// probability `confidence` (between 0 and 1): the upper confidence limit of the binomial
// distribution after C. J. Clopper and E. S. Pearson, Biometrika 26 (1934), 404-413. Both numbers
// may be fractions: the sum over the distribution is taken as the incomplete beta function, which
// it equals for whole numbers. It is 1 when all cases are errors.
double binomial_upper_limit(double errors, double cases, double confidence);

}  // namespace arbor::tree

#endif
