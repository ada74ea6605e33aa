// How the classes of a process's cases were predicted, kept until it is its turn to add them up:
// the sums of an evaluation depend on the order of the cases.
//
//   score_list scores;
//   for (...) scores.add(classify(row).score(actual, weight));
//   const evaluation quality = evaluation_of_all(group, scores);
#ifndef ARBOR_PROCESSES_SCORE_LIST_H
#define ARBOR_PROCESSES_SCORE_LIST_H

#include <cstdint>
#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/tree/evaluation.h"

namespace arbor::tree {

// Most cases of one class at a leaf have the same score, which is kept once: a case takes 8 bytes,
// and at most 32.
class score_list {
 public:
  score_list();

  // The weight is that of a case, a float.
  void add(const scored_case& added);

  // Adds all of them, in their order.
  void add_to(evaluation& sums) const;

 private:
  struct score {
    std::uint32_t actual;
    std::uint32_t predicted;
    double lost_bits;
    double squared_difference;
    bool operator==(const score& other) const;
  };
  struct case_score {
    std::uint32_t score;
    float weight;
  };

  std::vector<score> scores;
  std::vector<case_score> cases;
  std::vector<std::uint32_t> recent;  // by a hash of a score: the last one that has it
};

// Collective. The evaluation of the cases of all processes, one after the other.
evaluation evaluation_of_all(process_group& group, const score_list& own);

}  // namespace arbor::tree

#endif
