// The cases of a branch, in two passes over a node's cases: the first weighs and counts them, the
// second copies them into a sequence of just that size. Internal to the model.
//
//   branch_cases low = cases_of_side(begin, end, 1, total, code_of, threshold_code, range);
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
  float ratio;  // the branch's share
};

// The rules by which codes belong to a branch. The unknown cases (code 0) go down every branch. If
// code 0 belongs to the branch by its rule, their weight is part of the branch's weight; otherwise
// it is kept apart.
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

// 1 for an unknown case that is kept apart, else 0.
template <class OnBranch>
unsigned int is_apart(unsigned int code) {
  return OnBranch::has_unknown ? 0 : static_cast<unsigned int>(code == 0);
}

// What the first pass may note about all codes: the bounds of the known ones, or nothing.
struct code_extent {
  unsigned int before_lowest = std::numeric_limits<unsigned int>::max();
  unsigned int highest = 0;

  void note(unsigned int code) {
    before_lowest = std::min(before_lowest, code - 1);  // code 0 becomes the largest number
    highest = std::max(highest, code);
  }
};
struct no_extent {
  void note(unsigned int /*code*/) {}
};

// What the first pass finds.
template <class Extent>
struct branch_weight {
  float on_branch = 0;
  float apart = 0;
  std::size_t cases = 0;  // on the branch or apart
  Extent codes;
};

// Not inlined: because of the allocation that follows, the sums would be kept in memory, and each
// addition would wait until the one before is stored.
template <class Extent, class CodeOf, class OnBranch>
[[gnu::noinline]] branch_weight<Extent> weigh_branch(w_sequence::const_iterator begin,
                                                     w_sequence::const_iterator end, CodeOf code_of,
                                                     OnBranch on_branch) {
  branch_weight<Extent> result;
  for (auto c = begin; c != end; ++c) {
    const unsigned int code = code_of(c->first);
    result.codes.note(code);
    const auto on = static_cast<unsigned int>(on_branch(code));
    const unsigned int apart = is_apart<OnBranch>(code);
    result.on_branch += weight_if(on, c->second);  // adding 0 leaves a sum as it is
    result.apart += weight_if(apart, c->second);
    result.cases += on | apart;
  }
  return result;
}

// Returns the cases of a branch and the unknown ones, whose weight is multiplied by the branch's
// share if `scale_unknown`. The share is the branch's weight divided by `total` minus the weight
// kept apart. `codes` receives the extent of all codes.
//
// Neither pass branches on a case: the side of the next one is hard to predict.
template <class CodeOf, class OnBranch, class Extent>
branch_cases cases_on_branch(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                             float total, CodeOf code_of, OnBranch on_branch, bool scale_unknown,
                             Extent& codes) {
  const branch_weight<Extent> weight = weigh_branch<Extent>(begin, end, code_of, on_branch);
  codes = weight.codes;
  const double known_weight = static_cast<double>(total) - static_cast<double>(weight.apart);
  branch_cases result{std::make_unique<w_sequence>(weight.cases),
                      static_cast<float>(static_cast<double>(weight.on_branch) / known_weight)};
  // Factors of known values and of unknown ones.
  const std::array<float, 2> factors{1.0F, scale_unknown ? result.ratio : 1.0F};
  auto* const taken = result.cases->data();
  auto c = begin;
  // Every case is written to the next free place, and stays there if it is on the branch.
  for (std::size_t next = 0; next < weight.cases; ++c) {
    const unsigned int code = code_of(c->first);
    const auto on = static_cast<unsigned int>(on_branch(code));
    taken[next] = {c->first, factors[static_cast<std::size_t>(code == 0)] * c->second};
    next += on | is_apart<OnBranch>(code);
  }
  return result;
}

// Returns the branch of one value. Branch 0 is that of the unknown cases, which keep their weight.
template <class CodeOf>
branch_cases cases_of_value(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                            unsigned int branch, float total, CodeOf code_of) {
  no_extent codes;
  if (branch == 0) {
    return cases_on_branch(begin, end, total, code_of, codes_up_to{0}, false, codes);
  }
  return cases_on_branch(begin, end, total, code_of, one_code{branch}, true, codes);
}

// Returns the branch of the codes up to `threshold` (1), of those above it (2), or of no code (any
// other). Code 0 is not above the threshold, so the weight of the unknown cases is part of the low
// branch's. `range` receives the bounds of `threshold` and the known codes on the branch.
template <class CodeOf>
branch_cases cases_of_side(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                           unsigned int branch, float total, CodeOf code_of, unsigned int threshold,
                           strata::util::pair<unsigned int, unsigned int>& range) {
  constexpr unsigned int greatest = std::numeric_limits<unsigned int>::max();  // none is above it
  const bool low = branch == 1;
  const bool high = branch == 2;
  const codes_above above{high ? threshold : greatest};
  code_extent codes;
  branch_cases result =
      low ? cases_on_branch(begin, end, total, code_of, codes_up_to{threshold}, true, codes)
          : cases_on_branch(begin, end, total, code_of, above, true, codes);
  range.first = low && codes.before_lowest < threshold ? codes.before_lowest + 1 : threshold;
  range.second = (high ? std::max(codes.highest, threshold) : threshold) + 1;
  return result;
}

}  // namespace arbor::impls

#endif
