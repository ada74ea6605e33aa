// STAND-IN, to be replaced: each process reads the whole table, and takes its share of the cases.
#ifndef ARBOR_PROCESSES_SHARED_LOADING_H
#define ARBOR_PROCESSES_SHARED_LOADING_H

#include "arbor/processes/agreement.h"
#include "arbor/processes/process_group.h"
#include "arbor/table/table_loader.h"

namespace arbor::tree {

inline table load_shared_table(process_group& group, const std::vector<std::string>& paths,
                               const load_options& options) {
  group.enter("reading");
  table whole = agreed(group, [&] { return load_table(paths, options); });
  const std::size_t count = whole.cases.size();
  const auto first = static_cast<std::ptrdiff_t>(count * group.rank() / group.size());
  const auto last = static_cast<std::ptrdiff_t>(count * (group.rank() + 1ULL) / group.size());
  whole.cases = impls::w_sequence(whole.cases.begin() + first, whole.cases.begin() + last);
  return whole;
}

}  // namespace arbor::tree

#endif
