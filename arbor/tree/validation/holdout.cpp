#include "arbor/tree/validation/holdout.h"

#include <cmath>
#include <random>

namespace arbor::tree {

divided_cases hold_out(const impls::w_sequence& cases, double share, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  auto wanted = static_cast<std::size_t>(std::llround(share * static_cast<double>(cases.size())));
  divided_cases result;
  // Each case is taken with the probability that makes all choices of this many cases equally
  // likely. The generator gives the same numbers everywhere, the standard distributions do not.
  for (std::size_t i = 0; i < cases.size(); ++i) {
    const bool held = random() % (cases.size() - i) < wanted;
    (held ? result.held_back : result.training).push_back(cases[i]);
    if (held) --wanted;
  }
  return result;
}

}  // namespace arbor::tree
