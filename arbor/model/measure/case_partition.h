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

// The codes of a branch: `count` of them from `first` on.
struct branch_codes {
  static constexpr unsigned long long all_codes = 1ULL << 32U;

  static branch_codes up_to(unsigned int last) { return {0, last + 1ULL}; }
  static branch_codes above(unsigned int last_below) {
    return {last_below + 1, all_codes - 1 - last_below};
  }
  static branch_codes only(unsigned int code) { return {code, 1}; }
  static branch_codes none() { return {0, 0}; }

  bool contains(unsigned int code) const { return code - first < count; }

  unsigned int first;
  unsigned long long count;
};

// The weights and codes of a branch, as the first pass finds them. The cases whose value is unknown
// (code 0) go down every branch. Where code 0 is a code of the branch, they weigh on it like others;
// elsewhere their weight is kept apart.
struct branch_weight {
  float on_branch = 0;
  float unknown_apart = 0;
  std::size_t cases = 0;  // on the branch or of unknown value
  // The bounds of all known codes, on the branch or not.
  unsigned int code_before_lowest = std::numeric_limits<unsigned int>::max();
  unsigned int highest_code = 0;
};

// Not inlined: the sums would be kept in memory because of the allocation that follows, and each
// addition would wait until the last is stored.
template <class CodeOf>
[[gnu::noinline]] branch_weight weigh_branch(w_sequence::const_iterator begin,
                                             w_sequence::const_iterator end, CodeOf code_of,
                                             branch_codes codes) {
  const unsigned int unknown_is_apart = codes.contains(0) ? 0 : 1;
  branch_weight result;
  for (auto c = begin; c != end; ++c) {
    const unsigned int code = code_of(c->first);
    // Code 0 becomes the largest number, so that it is no lowest code.
    result.code_before_lowest = std::min(result.code_before_lowest, code - 1);
    result.highest_code = std::max(result.highest_code, code);
    const auto on_branch = static_cast<unsigned int>(codes.contains(code));
    const unsigned int apart = static_cast<unsigned int>(code == 0) & unknown_is_apart;
    result.on_branch += weight_if(on_branch, c->second);  // adding 0 leaves a sum as it is
    result.unknown_apart += weight_if(apart, c->second);
    result.cases += on_branch | apart;
  }
  return result;
}

// The second pass: the cases of the codes and those of unknown value, whose weights are multiplied
// by `unknown_factor`. `count` is how many these are.
//
// Does not branch on a case: on which side the next one is, is hard to foresee.
template <class CodeOf>
std::unique_ptr<w_sequence> take_branch(w_sequence::const_iterator begin, CodeOf code_of,
                                        branch_codes codes, std::size_t count,
                                        float unknown_factor) {
  auto result = std::make_unique<w_sequence>(count);
  const std::array<float, 2> factors{1.0F, unknown_factor};  // of known values and unknown ones
  auto* const taken = result->data();
  auto c = begin;
  // Every case is written to the next free place, and stays there if it is on the branch.
  for (std::size_t next = 0; next < count; ++c) {
    const unsigned int code = code_of(c->first);
    const auto unknown = static_cast<unsigned int>(code == 0);
    taken[next] = {c->first, factors[unknown] * c->second};
    next += static_cast<unsigned int>(codes.contains(code)) | unknown;
  }
  return result;
}

// The share of a branch: its weight over that of the cases that are not kept apart.
inline float branch_ratio(const branch_weight& branch, float total) {
  const double known_weight =
      static_cast<double>(total) - static_cast<double>(branch.unknown_apart);
  return static_cast<float>(static_cast<double>(branch.on_branch) / known_weight);
}

// The branch of one value. In branch 0 the unknown cases are the ones meant, and keep their weight.
template <class CodeOf>
branch_cases cases_of_value(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                            unsigned int branch, float total, CodeOf code_of) {
  const auto codes = branch_codes::only(branch);
  const branch_weight weight = weigh_branch(begin, end, code_of, codes);
  const float ratio = branch_ratio(weight, total);
  return {take_branch(begin, code_of, codes, weight.cases, branch == 0 ? 1.0F : ratio), ratio};
}

// The branch of the codes up to `threshold` (1), of those above it (2), or of none (any other). In the
// low branch code 0 is among the codes, so that unknown cases weigh on it. `range` receives the bounds
// of `threshold` and of the known codes on the branch.
template <class CodeOf>
branch_cases cases_of_side(w_sequence::const_iterator begin, w_sequence::const_iterator end,
                           unsigned int branch, float total, CodeOf code_of, unsigned int threshold,
                           strata::util::pair<unsigned int, unsigned int>& range) {
  const auto codes = branch == 1   ? branch_codes::up_to(threshold)
                     : branch == 2 ? branch_codes::above(threshold)
                                   : branch_codes::none();
  const branch_weight weight = weigh_branch(begin, end, code_of, codes);
  const float ratio = branch_ratio(weight, total);
  branch_cases result{take_branch(begin, code_of, codes, weight.cases, ratio), ratio};
  const bool lower = branch == 1 && weight.code_before_lowest < threshold;
  range.first = lower ? weight.code_before_lowest + 1 : threshold;
  range.second = (branch == 2 ? std::max(weight.highest_code, threshold) : threshold) + 1;
  return result;
}

}  // namespace arbor::impls

#endif
