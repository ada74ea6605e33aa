// An attribute that one of several processes rates, and the rating as it is sent.
#ifndef ARBOR_PROCESSES_SHARED_ATTRIBUTE_H
#define ARBOR_PROCESSES_SHARED_ATTRIBUTE_H

#include <cstddef>
#include <cstdint>

#include "arbor/tree/growing/judged_split.h"

namespace arbor::tree {

struct shared_attribute {
  std::size_t entry;  // among those that are rated
  const impls::column* column;
  code_range range;
};

struct shared_result {
  std::uint32_t entry;
  std::uint32_t branches;
  std::uint32_t low_code;
  std::uint32_t high_code;
  float gain;
  float split_info;
  float judged_gain;
  std::uint32_t finite;

  static shared_result of(const shared_attribute& attribute, const judged_split& split) {
    return {static_cast<std::uint32_t>(attribute.entry),
            split.rating.branches,
            split.rating.low_code,
            split.rating.high_code,
            split.rating.gain,
            split.rating.split_info,
            split.judged_gain,
            split.finite ? 1U : 0U};
  }

  judged_split split(const impls::column& attribute) const {
    judged_split result;
    result.rating.branches = branches;
    result.rating.low_code = low_code;
    result.rating.high_code = high_code;
    result.rating.split_column = const_cast<impls::column*>(&attribute);  // not changed
    result.rating.gain = gain;
    result.rating.split_info = split_info;
    result.judged_gain = judged_gain;
    result.finite = finite != 0;
    return result;
  }
};

}  // namespace arbor::tree

#endif
