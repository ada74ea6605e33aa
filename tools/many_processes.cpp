#include "tools/many_processes.h"

#include <algorithm>
#include <numeric>

#include "arbor/processes/agreement.h"
#include "arbor/processes/shared_classification.h"
#include "arbor/processes/shared_evaluation.h"
#include "arbor/processes/shared_growth.h"
#include "arbor/processes/shared_loading.h"
#include "arbor/processes/shared_rating.h"
#include "arbor/processes/shared_summary.h"

namespace arbor::tools {

many_processes::many_processes(tree::process_group& all) : group(all) {}

template <class Options>
Options many_processes::with_threads(Options options) const {
  if (options.threads == 0)
    options.threads = std::max(1U, tree::machine_threads() / group.on_this_machine());
  return options;
}

void many_processes::in_all(const std::function<void()>& work) const {
  tree::agree(group, tree::failure_of(work));
}

// No result is saved if another process has failed.
void many_processes::in_first(const std::function<void()>& work) const {
  tree::agree(group, nullptr);
  tree::agree(group, group.is_first() ? tree::failure_of(work) : nullptr);
}

std::size_t many_processes::sum(std::size_t own) const {
  std::vector<std::uint64_t> counts{own};
  group.add_up(counts);
  return counts.front();
}

tree::table many_processes::load(const std::vector<std::string>& paths,
                                 const tree::load_options& options) const {
  return tree::load_shared_table(group, paths, with_threads(options));
}

tree::case_summary many_processes::summary(const tree::table& summed,
                                           const impls::w_sequence& cases) const {
  return tree::shared_summary(group, summed, cases);
}

tree::table_rating many_processes::rate(const tree::table& rated, const impls::w_sequence& cases,
                                        float min_weight) const {
  return tree::rate_shared_attributes(group, rated, cases, min_weight);
}

tree::divided_cases many_processes::hold_out(const impls::w_sequence& cases, double share,
                                             std::uint64_t seed) const {
  const std::vector<std::uint64_t> counts =
      group.gathered(std::vector<std::uint64_t>{cases.size()});
  const auto own = counts.begin() + group.rank();
  return tree::hold_out(cases, share, seed, std::accumulate(counts.begin(), own, std::uint64_t{0}),
                        std::accumulate(own + 1, counts.end(), std::uint64_t{0}));
}

tree::decision_tree many_processes::grow(const tree::table& training,
                                         const impls::w_sequence& cases,
                                         const tree::grow_options& options) const {
  return tree::grow_shared_tree(group, training, cases, with_threads(options));
}

tree::evaluation many_processes::evaluate(const tree::decision_tree& model, const tree::table& rows,
                                          const impls::w_sequence& cases) const {
  return tree::classify_shared_cases(group, model, rows, cases);
}

tree::classification_result many_processes::classify(const std::vector<std::string>& paths,
                                                     const tree::decision_tree& model,
                                                     const tree::classification_options& options,
                                                     std::ostream* rows) const {
  return tree::classify_shared_table(group, paths, model, with_threads(options), rows);
}

}  // namespace arbor::tools
