// What a tree builder may choose about the rating of splits. A null pointer to options means these
// defaults.
#ifndef ARBOR_MODEL_OPTIONS_H
#define ARBOR_MODEL_OPTIONS_H

namespace arbor::impls {

struct options {
  // Whether the penalty for trying many cuts is spread over the number of cases rather than over
  // their total weight.
  bool penalty_by_case_count = false;
};

}  // namespace arbor::impls

#endif
