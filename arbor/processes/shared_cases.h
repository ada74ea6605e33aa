// The cases of a node that are shared out among processes: each has those of its own rows.
//
//   const shared_cases root = share_out(group, {root_cases(training, training.cases)});
#ifndef ARBOR_PROCESSES_SHARED_CASES_H
#define ARBOR_PROCESSES_SHARED_CASES_H

#include <cstdint>
#include <vector>

#include "arbor/processes/process_group.h"
#include "arbor/tree/growing/growing_node.h"
#include "arbor/tree/growing/node_cases.h"

namespace arbor::tree {

// Float sums depend on the order of the cases, which is that of one machine. There, the cases of a
// discrete branch whose value is known come before those whose value is unknown. So the cases are
// in several sequences: the first ones of all processes come first, in the order of the processes,
// then the second ones of all processes, and so on. Every process has equally many of them, some
// perhaps empty. Ranges and depth are the same everywhere.
struct shared_cases {
  std::shared_ptr<const case_rows> rows;
  std::vector<std::shared_ptr<const impls::w_sequence>> sequences;
  std::vector<code_range> ranges;
  unsigned int depth = 0;

  std::uint64_t all = 0;  // cases of all processes
  // What each case weighs if all weigh the same whole number, and float adds up all of them without
  // rounding; else 0. Sums over such cases are exact and may be formed in any order.
  unsigned int even_weight = 0;

  bool is_even() const { return even_weight > 0; }
  node_cases sequence(std::size_t i) const { return {rows, sequences[i], ranges, depth}; }
  const impls::column& column(std::size_t index) const { return *rows->columns()[index]; }
};

// Collective. Sets `all` and `even_weight`.
void count_cases(process_group& group, shared_cases& node);

// Collective. The root of a tree: `cases` are those of this process, rows of its table.
shared_cases shared_root(process_group& group, const table& training,
                         const impls::w_sequence& cases);

// Collective. Sums over all cases in their order: `add(sums, cases)` adds those of a sequence.
template <class T, class Add>
void add_cases_up(process_group& group, const shared_cases& node, std::vector<T>& sums, Add add) {
  if (node.is_even()) {
    for (std::size_t i = 0; i < node.sequences.size(); ++i) add(sums, node.sequence(i));
    group.add_up(sums);
    return;
  }
  for (std::size_t i = 0; i < node.sequences.size(); ++i)
    group.pass_on(sums, [&] { add(sums, node.sequence(i)); });
}

// Collective. What is known of all cases of a node.
node_summary summary_of(process_group& group, const shared_cases& node);

}  // namespace arbor::tree

#endif
