// Where a command does its work: on this machine alone, or with other processes among which the
// rows of a table are shared out. All of them then run the same command and call the same functions
// in the same order.
#ifndef ARBOR_TOOLS_WORKPLACE_H
#define ARBOR_TOOLS_WORKPLACE_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

#include "arbor/table/table_loader.h"
#include "arbor/tree/grower.h"
#include "arbor/tree/rating.h"
#include "arbor/tree/table_classification.h"
#include "arbor/tree/validation/holdout.h"

namespace arbor::tools {

// The table has the rows of this process, and cases are some of them. Results are those of the rows
// of all processes, unless this says otherwise; each process has them.
class workplace {
 public:
  virtual ~workplace() = default;

  // Whether there may be other processes.
  virtual bool is_shared() const = 0;

  // Calls `work`, which may fail in some of the processes, in each of them, or only in the first,
  // which prints and saves, once all have come so far. Throws in each process if it throws in one.
  virtual void in_all(const std::function<void()>& work) const = 0;
  virtual void in_first(const std::function<void()>& work) const = 0;

  // The sum of what the processes have counted.
  virtual std::size_t sum(std::size_t own) const = 0;

  // As load_table.
  virtual tree::table load(const std::vector<std::string>& paths,
                           const tree::load_options& options) const = 0;
  // As summary_of.
  virtual tree::case_summary summary(const tree::table& summed,
                                     const impls::w_sequence& cases) const = 0;
  // As rate_attributes.
  virtual tree::table_rating rate(const tree::table& rated, const impls::w_sequence& cases,
                                  float min_weight) const = 0;
  // As hold_out; the parts are cases of this process.
  virtual tree::divided_cases hold_out(const impls::w_sequence& cases, double share,
                                       std::uint64_t seed) const = 0;
  // As grow_tree.
  virtual tree::decision_tree grow(const tree::table& training, const impls::w_sequence& cases,
                                   const tree::grow_options& options) const = 0;
  // As classify_cases.
  virtual tree::evaluation evaluate(const tree::decision_tree& model, const tree::table& rows,
                                    const impls::w_sequence& cases) const = 0;
  // As classify_table; the first process writes the rows.
  virtual tree::classification_result classify(const std::vector<std::string>& paths,
                                               const tree::decision_tree& model,
                                               const tree::classification_options& options,
                                               std::ostream* rows) const = 0;
};

}  // namespace arbor::tools

#endif
