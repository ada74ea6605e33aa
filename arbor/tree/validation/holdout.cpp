#include "arbor/tree/validation/holdout.h"

#include <cmath>
#include <random>

namespace arbor::tree {

divided_cases hold_out(const impls::w_sequence& cases, double share, std::uint64_t seed) {
  return hold_out(cases, share, seed, 0, 0);
}

divided_cases hold_out(const impls::w_sequence& cases, double share, std::uint64_t seed,
                       std::size_t before, std::size_t behind) {
  std::mt19937_64 random(seed);
  std::size_t left = before + cases.size() + behind;
  auto wanted = static_cast<std::size_t>(std::llround(share * static_cast<double>(left)));
  if (wanted == 0) return {cases, {}};
  // Each case is taken with the probability that makes all choices of this many cases equally
  // likely. The generator gives the same numbers everywhere, the standard distributions do not.
  const auto is_held = [&] {
    const bool held = random() % left-- < wanted;
    if (held) --wanted;
    return held;
  };
  for (std::size_t i = 0; i < before; ++i) is_held();
  divided_cases result;
  for (const auto& weighted : cases)
    (is_held() ? result.held_back : result.training).push_back(weighted);
  return result;
}

}  // namespace arbor::tree
