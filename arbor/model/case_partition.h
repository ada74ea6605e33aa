// Who goes down a branch, in two passes over a node's cases: the first weighs and counts them, the second takes them
// into a sequence of just that size. Internal to the model.
#ifndef ARBOR_MODEL_CASE_PARTITION_H
#define ARBOR_MODEL_CASE_PARTITION_H

#include <algorithm>
#include <limits>
#include <memory>

#include "arbor/model/code_readers.h"

namespace arbor::impls {

struct branch_cases {
  std::unique_ptr<w_sequence> cases;
  float ratio;
};

// The cases whose code `on_branch` accepts, and those of unknown value. The former weigh on the branch; the latter,
// unless `on_branch` accepts their code 0 as well, are taken off `total`. `scale_unknown` tells whether unknown cases
// are taken with their weight multiplied by the ratio. `when_read` is called with the code of every case.
//
// Neither pass branches on a case: which side the next one is on is hard to foresee.
template <class CodeOf, class OnBranch, class WhenRead>
branch_cases cases_on_branch(w_sequence::const_iterator begin, w_sequence::const_iterator end, float total,
                             CodeOf code_of, OnBranch on_branch, bool scale_unknown, WhenRead when_read) {
  float branch_weight = 0;
  float unknown_weight = 0;
  std::size_t count = 0;
  for (auto c = begin; c != end; ++c) {
    const unsigned int code = code_of(c->first);
    when_read(code);
    const bool on = on_branch(code);
    const bool unknown = !on & (code == 0);
    branch_weight += on ? c->second : 0.0F;  // nothing leaves a sum as it is
    unknown_weight += unknown ? c->second : 0.0F;
    count += on | unknown ? 1 : 0;
  }
  const double known_weight = static_cast<double>(total) - static_cast<double>(unknown_weight);
  branch_cases result{std::make_unique<w_sequence>(count),
                      static_cast<float>(static_cast<double>(branch_weight) / known_weight)};
  // Every case is written to the next free place, and stays there if it is on the branch.
  const float factor = scale_unknown ? result.ratio : 1.0F;
  auto* const taken = result.cases->data();
  auto c = begin;
  for (std::size_t next = 0; next < count; ++c) {
    const unsigned int code = code_of(c->first);
    taken[next] = {c->first, code == 0 ? factor * c->second : c->second};
    next += on_branch(code) | (code == 0) ? 1 : 0;
  }
  return result;
}

// The branch of one value. Of branch 0 the unknown cases are the ones meant, and keep their weight.
template <class CodeOf>
branch_cases cases_of_value(w_sequence::const_iterator begin, w_sequence::const_iterator end, unsigned int branch,
                            float total, CodeOf code_of) {
  const auto of_value = [branch](unsigned int code) { return code == branch; };
  return cases_on_branch(begin, end, total, code_of, of_value, branch != 0, [](unsigned int /*code*/) {});
}

// The branch of the codes up to `threshold` (1), of those above it (2), or of none (any other). Code 0 is not above the
// low branch's threshold: there the unknown cases weigh on the branch. `range` receives the bounds of `threshold` and
// of the known codes on the branch.
template <class CodeOf>
branch_cases cases_of_side(w_sequence::const_iterator begin, w_sequence::const_iterator end, unsigned int branch,
                           float total, CodeOf code_of, unsigned int threshold,
                           strata::util::pair<unsigned int, unsigned int>& range) {
  constexpr unsigned int none = std::numeric_limits<unsigned int>::max();
  unsigned int before_lowest = none;  // of the known codes
  unsigned int highest = threshold;
  const auto note = [&](unsigned int code) {
    before_lowest = std::min(before_lowest, code - 1);  // `none` for code 0
    highest = std::max(highest, code);
  };
  const auto up_to = [=](unsigned int code) { return code <= threshold; };
  const auto above = [=](unsigned int code) { return branch == 2 && code > threshold; };
  branch_cases result = branch == 1 ? cases_on_branch(begin, end, total, code_of, up_to, true, note)
                                    : cases_on_branch(begin, end, total, code_of, above, true, note);
  range.first = branch == 1 && before_lowest < threshold ? before_lowest + 1 : threshold;
  range.second = (branch == 2 ? highest : threshold) + 1;
  return result;
}

}  // namespace arbor::impls

#endif
