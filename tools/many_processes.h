// Commands that do their work together with other processes, for the program arbor-mpi.
#ifndef ARBOR_TOOLS_MANY_PROCESSES_H
#define ARBOR_TOOLS_MANY_PROCESSES_H

#include "arbor/processes/process_group.h"
#include "tools/workplace.h"

namespace arbor::tools {

// Where no number of threads is chosen, a process has its share of the machine's cores.
class many_processes : public workplace {
 public:
  // The group must outlive this object.
  explicit many_processes(tree::process_group& all);

  bool is_shared() const override { return true; }
  void in_all(const std::function<void()>& work) const override;
  void in_first(const std::function<void()>& work) const override;
  std::size_t sum(std::size_t own) const override;
  tree::table load(const std::vector<std::string>& paths,
                   const tree::load_options& options) const override;
  tree::case_summary summary(const tree::table& summed,
                             const impls::w_sequence& cases) const override;
  tree::table_rating rate(const tree::table& rated, const impls::w_sequence& cases,
                          float min_weight) const override;
  tree::divided_cases hold_out(const impls::w_sequence& cases, double share,
                               std::uint64_t seed) const override;
  tree::decision_tree grow(const tree::table& training, const impls::w_sequence& cases,
                           const tree::grow_options& options) const override;
  tree::evaluation evaluate(const tree::decision_tree& model, const tree::table& rows,
                            const impls::w_sequence& cases) const override;
  tree::classification_result classify(const std::vector<std::string>& paths,
                                       const tree::decision_tree& model,
                                       const tree::classification_options& options,
                                       std::ostream* rows) const override;

 private:
  template <class Options>
  Options with_threads(Options options) const;

  tree::process_group& group;
};

}  // namespace arbor::tools

#endif
