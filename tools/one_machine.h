// Commands that do their work in this process, for the program arbor.
#ifndef ARBOR_TOOLS_ONE_MACHINE_H
#define ARBOR_TOOLS_ONE_MACHINE_H

#include "arbor/tree/classification.h"
#include "tools/workplace.h"

namespace arbor::tools {

class one_machine : public workplace {
 public:
  bool is_shared() const override { return false; }
  void in_all(const std::function<void()>& work) const override { work(); }
  void in_first(const std::function<void()>& work) const override { work(); }
  std::size_t sum(std::size_t own) const override { return own; }
  tree::table load(const std::vector<std::string>& paths,
                   const tree::load_options& options) const override {
    return tree::load_table(paths, options);
  }
  tree::case_summary summary(const tree::table& summed,
                             const impls::w_sequence& cases) const override {
    return tree::summary_of(summed, cases);
  }
  tree::table_rating rate(const tree::table& rated, const impls::w_sequence& cases,
                          float min_weight) const override {
    return tree::rate_attributes(rated, cases, min_weight);
  }
  tree::divided_cases hold_out(const impls::w_sequence& cases, double share,
                               std::uint64_t seed) const override {
    return tree::hold_out(cases, share, seed);
  }
  tree::decision_tree grow(const tree::table& training, const impls::w_sequence& cases,
                           const tree::grow_options& options) const override {
    return tree::grow_tree(training, cases, options);
  }
  tree::evaluation evaluate(const tree::decision_tree& model, const tree::table& rows,
                            const impls::w_sequence& cases) const override {
    return tree::classify_cases(model, rows, cases);
  }
  tree::classification_result classify(const std::vector<std::string>& paths,
                                       const tree::decision_tree& model,
                                       const tree::classification_options& options,
                                       std::ostream* rows) const override {
    return tree::classify_table(paths, model, options, rows);
  }
};

}  // namespace arbor::tools

#endif
