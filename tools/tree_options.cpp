#include "tools/tree_options.h"

#include <fmt/format.h>

#include "arbor/csv/shown_text.h"
#include "arbor/table/value_text.h"
#include "arbor/tree/validation/tuning.h"
#include "tools/command_line.h"
#include "tools/table_options.h"
#include "tools/thread_option.h"

namespace arbor::tools {

namespace {

float confidence_value(const std::string& given) {
  const float confidence = share_value("--confidence", given);
  refuse_if(confidence == 0 || confidence > 0.5F,
            "--confidence: " + tree::in_quotes(given) + " is not above 0 and up to 0.5");
  return confidence;
}

// "1, 2 or 5"
template <class Values>
std::string alternatives(const Values& values) {
  std::string list = tree::shortest_text(values.front());
  for (std::size_t i = 1; i < values.size(); ++i)
    list += (i + 1 < values.size() ? ", " : " or ") + tree::shortest_text(values[i]);
  return list;
}

}  // namespace

void tree_options::add_to(CLI::App& to) {
  const tree::grow_options defaults;
  to.add_option("--min-weight", min_weight,
                "Minimum weight of both sides of a threshold, or of two branches of a discrete "
                "split (default: " +
                    tree::shortest_text(defaults.min_weight) + ")")
      ->type_name("W");
  to.add_option("--max-depth", max_depth,
                "Maximum number of tests from the root to a leaf (default: no limit)")
      ->type_name("D");
  to.add_flag("--no-pruning", no_pruning, "Keep every branch");
  to.add_option("--confidence", confidence,
                "Confidence of pruning, above 0 and up to 0.5; a smaller one prunes more "
                "(default: " +
                    tree::shortest_text(defaults.confidence) + ")")
      ->type_name("C");
  to.add_flag(
      "--tune", tuning,
      fmt::format("Choose the minimum weight ({}) and the confidence ({}) by "
                  "cross-validation with the training rows: the pair with the least sum "
                  "of the share of errors and the Brier score",
                  alternatives(tree::tuned_min_weights), alternatives(tree::tuned_confidences)));
  add_threads(to, threads);
}

tree::grow_options tree_options::chosen() const {
  tree::grow_options options;
  if (!min_weight.empty()) options.min_weight = weight_value("--min-weight", min_weight);
  if (!max_depth.empty()) options.max_depth = whole_value("--max-depth", max_depth);
  options.threads = thread_count(threads);
  if (!confidence.empty()) options.confidence = confidence_value(confidence);
  options.prune = !no_pruning;
  refuse_if(tuning && !min_weight.empty(), "--tune does not go with --min-weight");
  refuse_if(tuning && !confidence.empty(), "--tune does not go with --confidence");
  refuse_if(tuning && no_pruning, "--tune does not go with --no-pruning");
  return options;
}

}  // namespace arbor::tools
