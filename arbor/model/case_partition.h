// Who goes down a branch, in two passes over a node's cases: the first weighs and counts them, the second takes them
// into a sequence of just that size. Internal to the model.
#ifndef ARBOR_MODEL_CASE_PARTITION_H
#define ARBOR_MODEL_CASE_PARTITION_H

#include <algorithm>
#include <memory>

#include "arbor/model/code_readers.h"

namespace arbor::impls {

struct branch_cases {
  std::unique_ptr<w_sequence> cases;
  float ratio;
};

// The cases whose code `on_branch` accepts, and those of unknown value. The former weigh on the branch; the latter,
// unless `on_branch` accepts their code 0 as well, are taken off `total`. `scale_unknown` tells whether unknown cases
// are taken with their weight multiplied by the ratio. `when_taken` is called with the code of every other case that is
// taken.
template <class CodeOf, class OnBranch, class WhenTaken>
branch_cases cases_on_branch(w_sequence::const_iterator begin, w_sequence::const_iterator end, float total,
                             CodeOf code_of, OnBranch on_branch, bool scale_unknown, WhenTaken when_taken) {
  float branch_weight = 0;
  float unknown_weight = 0;
  std::size_t count = 0;
  for (auto c = begin; c != end; ++c) {
    const unsigned int code = code_of(c->first);
    if (on_branch(code)) {
      branch_weight += c->second;
      ++count;
    } else if (code == 0) {
      unknown_weight += c->second;
      ++count;
    }
  }
  const double known_weight = static_cast<double>(total) - static_cast<double>(unknown_weight);
  branch_cases result{std::make_unique<w_sequence>(),
                      static_cast<float>(static_cast<double>(branch_weight) / known_weight)};
  result.cases->reserve(count);
  for (auto c = begin; c != end; ++c) {
    const unsigned int code = code_of(c->first);
    if (code == 0 && scale_unknown) {
      result.cases->push_back({c->first, result.ratio * c->second});
    } else if (on_branch(code)) {
      result.cases->push_back(*c);
      when_taken(code);
    }
  }
  return result;
}

// The branch of one value. Of branch 0 the unknown cases are the ones meant, and keep their weight.
template <class CodeOf>
branch_cases cases_of_value(w_sequence::const_iterator begin, w_sequence::const_iterator end, unsigned int branch,
                            float total, CodeOf code_of) {
  return cases_on_branch(
      begin, end, total, code_of, [branch](unsigned int code) { return code == branch; }, branch != 0,
      [](unsigned int /*code*/) {});
}

// The branch of the codes up to `threshold` (1), of those above it (2), or of none (any other). Code 0 is not above the
// low branch's threshold: there the unknown cases weigh on the branch. `range` receives the bounds of `threshold` and
// of the known codes on the branch.
template <class CodeOf>
branch_cases cases_of_side(w_sequence::const_iterator begin, w_sequence::const_iterator end, unsigned int branch,
                           float total, CodeOf code_of, unsigned int threshold,
                           strata::util::pair<unsigned int, unsigned int>& range) {
  unsigned int low = threshold;
  unsigned int high = threshold;
  const auto widen = [&](unsigned int code) {
    low = std::min(low, code);
    high = std::max(high, code);
  };
  const auto up_to = [=](unsigned int code) { return code <= threshold; };
  const auto above = [=](unsigned int code) { return branch == 2 && code > threshold; };
  branch_cases result = branch == 1 ? cases_on_branch(begin, end, total, code_of, up_to, true, widen)
                                    : cases_on_branch(begin, end, total, code_of, above, true, widen);
  range = {low, high + 1};
  return result;
}

}  // namespace arbor::impls

#endif
