// Who goes down a branch, in two passes over a node's cases: the first weighs and counts them, the
// second takes them into a sequence of just that size. Internal to the model.
#ifndef ARBOR_MODEL_MEASURE_CASE_PARTITION_H
#define ARBOR_MODEL_MEASURE_CASE_PARTITION_H

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

#include "arbor/model/code_readers.h"
#include "arbor/model/measure/weight_if.h"

namespace arbor::impls {

struct branch_cases {
  std::unique_ptr<w_sequence> cases;
  float ratio;
};

// Which codes are on a branch. The unknown cases (code 0) go down every branch; where they are on
// it like others, they weigh on it as well.
struct codes_up_to {
  static constexpr bool has_unknown = true;
  unsigned int last;
  bool operator()(unsigned int code) const { return code <= last; }
};
struct codes_above {
  static constexpr bool has_unknown = false;
  unsigned int last_below;
  bool operator()(unsigned int code) const { return code > last_below; }
};
struct one_code {  // but 0
  static constexpr bool has_unknown = false;
  unsigned int wanted;
  bool operator()(unsigned int code) const { return code == wanted; }
};
struct no_code {
  static constexpr bool has_unknown = false;
  bool operator()(unsigned int /*code*/) const { return false; }
};

// 1 for an unknown case that is not on the branch like others, else 0.
template <class OnBranch>
unsigned int beside_branch(unsigned int code) {
  return OnBranch::has_unknown ? 0 : static_cast<unsigned int>(code == 0);
}

// What a pass over codes may note of them: the bounds of the known ones, or nothing.
struct code_bounds {
  static constexpr unsigned int none = std::numeric_limits<unsigned int>::max();
  unsigned int before_lowest = none;
  unsigned int highest = 0;

  void note(unsigned int code) {
    before_lowest = std::min(before_lowest, code - 1);  // `none` for code 0
    highest = std::max(highest, code);
  }
};
struct no_bounds {
  void note(unsigned int /*code*/) {}
};

// What the first pass finds: the weight of the cases on the branch, that of the other unknown ones,
// and how many there are of both.
template <class Bounds>
struct branch_weights {
  float on_branch = 0;
  float unknown = 0;
  std::size_t count = 0;
  Bounds codes;
};

// Not inlined: the sums would be kept in memory, for the allocation that follows, and each addition
// wait for the last.
template <class Bounds, class CodeOf, class OnBranch>
[[gnu::noinline]] branch_weights<Bounds> weigh_branch(w_sequence::const_iterator begin,
                                                      w_sequence::const_iterator end,
                                                      CodeOf code_of, OnBranch on_branch) {
  branch_weights<Bounds> result;
  for (auto c = begin; c != end; ++c) {
    const unsigned int code = code_of(c->first);
    result.codes.note(code);
    const auto on = static_cast<unsigned int>(on_branch(code));
    const unsigned int beside = beside_branch<OnBranch>(code);
    result.on_branch += weight_if(on, c->second);  // a sum stays as it is when 0 is added
    result.unknown += weight_if(beside, c->second);
    result.count += on | beside;
  }
  return result;
}

// The cases on a branch, and those of unknown value. Where these are not on it like others, their
// weight is taken off `total`. `scale_unknown` tells whether they are taken with their weight
// multiplied by the ratio. `bounds` receives those of all codes.
//
// Neither pass branches on a case: which side the next one is on is hard to foresee.
template <class CodeOf, class OnBranch, class Bounds>
branch_cases cases_on_branch(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                             float total, CodeOf code_of, OnBranch on_branch, bool scale_unknown,
                             Bounds& bounds) {
  const branch_weights<Bounds> weights = weigh_branch<Bounds>(begin, end, code_of, on_branch);
  bounds = weights.codes;
  const double known_weight = static_cast<double>(total) - static_cast<double>(weights.unknown);
  branch_cases result{std::make_unique<w_sequence>(weights.count),
                      static_cast<float>(static_cast<double>(weights.on_branch) / known_weight)};
  // Every case is written to the next free place, and stays there if it is on the branch.
  const std::array<float, 2> factors{
      1.0F, scale_unknown ? result.ratio : 1.0F};  // of known values and unknown ones
  auto* const taken = result.cases->data();
  auto c = begin;
  for (std::size_t next = 0; next < weights.count; ++c) {
    const unsigned int code = code_of(c->first);
    const auto on = static_cast<unsigned int>(on_branch(code));
    taken[next] = {c->first, factors[static_cast<std::size_t>(code == 0)] * c->second};
    next += on | beside_branch<OnBranch>(code);
  }
  return result;
}

// The branch of one value. Of branch 0 the unknown cases are the ones meant, and keep their weight.
template <class CodeOf>
branch_cases cases_of_value(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                            unsigned int branch, float total, CodeOf code_of) {
  no_bounds codes;
  if (branch == 0) return cases_on_branch(begin, end, total, code_of, codes_up_to{0}, false, codes);
  return cases_on_branch(begin, end, total, code_of, one_code{branch}, true, codes);
}

// The branch of the codes up to `threshold` (1), of those above it (2), or of none (any other).
// Code 0 is not above the low branch's threshold: there the unknown cases weigh on the branch.
// `range` receives the bounds of `threshold` and of the known codes on the branch.
template <class CodeOf>
branch_cases cases_of_side(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                           unsigned int branch, float total, CodeOf code_of, unsigned int threshold,
                           strata::util::pair<unsigned int, unsigned int>& range) {
  code_bounds codes;
  branch_cases result =
      branch == 1 ? cases_on_branch(begin, end, total, code_of, codes_up_to{threshold}, true, codes)
      : branch == 2
          ? cases_on_branch(begin, end, total, code_of, codes_above{threshold}, true, codes)
          : cases_on_branch(begin, end, total, code_of, no_code(), true, codes);
  range.first =
      branch == 1 && codes.before_lowest < threshold ? codes.before_lowest + 1 : threshold;
  range.second = (branch == 2 ? std::max(codes.highest, threshold) : threshold) + 1;
  return result;
}

}  // namespace arbor::impls

#endif
