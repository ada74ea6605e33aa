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
// are taken with their weight multiplied by the ratio.
template <class CodeOf, class OnBranch>
branch_cases cases_on_branch(w_sequence::const_iterator begin, w_sequence::const_iterator end, float total,
                             CodeOf code_of, OnBranch on_branch, bool scale_unknown) {
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
    }
  }
  return result;
}

// The branch of one value. Of branch 0 the unknown cases are the ones meant, and keep their weight.
template <class CodeOf>
branch_cases cases_of_value(w_sequence::const_iterator begin, w_sequence::const_iterator end, unsigned int branch,
                            float total, CodeOf code_of) {
  return cases_on_branch(
      begin, end, total, code_of, [branch](unsigned int code) { return code == branch; }, branch != 0);
}

// The branch of the codes up to `threshold` (1), of those above it (2), or of none (any other). Code 0 is not above the
// low branch's threshold: there the unknown cases weigh on the branch.
template <class CodeOf>
branch_cases cases_of_side(w_sequence::const_iterator begin, w_sequence::const_iterator end, unsigned int branch,
                           float total, CodeOf code_of, unsigned int threshold) {
  if (branch == 1) {
    return cases_on_branch(
        begin, end, total, code_of, [=](unsigned int code) { return code <= threshold; }, true);
  }
  return cases_on_branch(
      begin, end, total, code_of, [=](unsigned int code) { return branch == 2 && code > threshold; }, true);
}

// The bounds of `threshold` and of the known codes among cases.
template <class CodeOf>
strata::util::pair<unsigned int, unsigned int> code_bounds(const w_sequence& cases, CodeOf code_of,
                                                           unsigned int threshold) {
  unsigned int low = threshold;
  unsigned int high = threshold;
  for (const auto& [row, weight] : cases) {
    const unsigned int code = code_of(row);
    if (code == 0) continue;
    low = std::min(low, code);
    high = std::max(high, code);
  }
  return {low, high + 1};
}

}  // namespace arbor::impls

#endif
